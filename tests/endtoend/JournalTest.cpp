#include "endtoend/LiveTest.h"
#include "soundserver/ProcessUsage.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>

namespace quorbel {
namespace {

/// Odd files in place of the journal cause no waiting, no growth and no writing elsewhere.
class Journal : public LiveTest {
  protected:
    Journal() { std::filesystem::create_directory(journal().parent_path()); }

    /// Starts, which must work soon or be refused soon by one line that names the place, runs until
    /// an application was captured, and ends.
    void run() {
        LiveProcess live(server, twelveDBLower());
        const auto runs = [&] { return live.hasLogged("[SystemAudioTap] running: tap="); };
        EXPECT_TRUE(comesTrue(2.0, [&] { return runs() || !live.process().running(); }))
            << "neither runs nor refuses";
        if (runs()) {
            EXPECT_TRUE(soonPlaysInto("player", {tapName(live)}));
            peakMiB = peakMemoryMiB(live.process().pid());
            whileRunning();
            EXPECT_EQ(live.process().stop(5.0, SIGINT), 0) << live.process().errors();
        } else if (live.process().running()) {
            live.process().stop(0.0, SIGKILL);
        } else {
            const std::string errors = live.process().errors();
            EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
            EXPECT_NE(errors.find("quorbel"), std::string::npos) << errors;
        }
        EXPECT_TRUE(soonPlaysInto("player", {"speakers"}));
    }

    std::function<void()> whileRunning = [] {};
    double peakMiB = 0.0; ///< of the last run, in RAM
};

TEST_F(Journal, ThatIsAPipeDelaysNothing) {
    playSequence();
    ASSERT_EQ(mkfifo(journal().c_str(), S_IRUSR | S_IWUSR), 0);
    run();
}

TEST_F(Journal, ThatIsALinkIsNotFollowed) {
    playSequence();
    const auto elsewhere = server.folder() / "elsewhere";
    const std::string text = "a file of the user's\n";
    std::ofstream(elsewhere) << text;
    create_symlink(elsewhere, journal());
    run();
    std::string now;
    std::getline(std::ifstream(elsewhere), now, '\0');
    EXPECT_EQ(now, text);
}

TEST_F(Journal, IsNotKeptWhereOthersCanWrite) {
    playSequence();
    permissions(journal().parent_path(), std::filesystem::perms::all);
    whileRunning = [&] {
        using std::filesystem::perms;
        const perms others = perms::group_write | perms::others_write;
        const bool isOpen = (status(journal().parent_path()).permissions() & others) != perms::none;
        EXPECT_FALSE(exists(journal()) && isOpen);
    };
    run();
}

TEST_F(Journal, OfGarbageIsReadInLittleMemory) {
    playSequence();
    run();
    const double usualMiB = peakMiB;
    {
        std::ofstream file(journal());
        for (int line = 0; line < 600'000; ++line)
            file << "routed " << line << " " << line << " 7 - - - -\n";
    }
    run();
    EXPECT_LT(peakMiB, usualMiB + 8.0);
}

} // namespace
} // namespace quorbel
