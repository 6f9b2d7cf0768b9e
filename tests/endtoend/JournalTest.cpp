#include "endtoend/LiveTest.h"
#include "soundserver/ProcessUsage.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>

namespace quorbel {
namespace {

using std::filesystem::perms;

/// Odd files in place of the journal neither block, nor use much memory, nor redirect writes.
class Journal : public LiveTest {
  protected:
    Journal() {
        create_directory(journal().parent_path());
        playSequence();
    }

    /// Processes until the application is captured, then ends. Returns the peak memory in MiB.
    double run(const std::function<void()> &whileRunning = [] {}) {
        const auto begin = SteadyClock::now();
        auto live = startLive(twelveDBLower());
        EXPECT_LT(SteadyClock::now() - begin, std::chrono::seconds(2));
        EXPECT_TRUE(soonPlaysInto("player", {tapName(*live)}));
        const double peakMiB = peakMemoryMiB(live->process().pid());
        whileRunning();
        stopLive(live);
        EXPECT_TRUE(soonPlaysInto("player", {"speakers"}));
        return peakMiB;
    }
};

TEST_F(Journal, IsNeitherPipeNorLinkNorWritableByOthers) {
    ASSERT_EQ(mkfifo(journal().c_str(), S_IRUSR | S_IWUSR), 0);
    run();
    remove(journal());
    const auto elsewhere = server.folder() / "elsewhere";
    const std::string text = "a file of the user's\n";
    std::ofstream(elsewhere) << text;
    create_symlink(elsewhere, journal());
    run();
    std::string now;
    std::getline(std::ifstream(elsewhere), now, '\0');
    EXPECT_EQ(now, text);
    remove(journal());
    permissions(journal().parent_path(), perms::all);
    run([&] {
        const perms others = perms::group_write | perms::others_write;
        const bool isOpen = (status(journal().parent_path()).permissions() & others) != perms::none;
        EXPECT_FALSE(exists(journal()) && isOpen);
    });
}

TEST_F(Journal, OfGarbageIsReadInLittleMemory) {
    const double usualMiB = run();
    {
        std::ofstream file(journal());
        for (int line = 0; line < 600'000; ++line)
            file << "routed " << line << " " << line << " 7 - - - -\n";
    }
    EXPECT_LT(run(), usualMiB + 8.0);
}

} // namespace
} // namespace quorbel
