#include "settings/state/AppStateFixture.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <new>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorbel::testing {
namespace {

using Seconds = std::chrono::duration<double>;
using SteadyClock = std::chrono::steady_clock;

/// Where the saving process stands, in memory that it shares with the test.
struct Progress {
    std::atomic<int> begun{0};
    std::atomic<int> finished{0};
};

class CrashWhileSaving : public AppStateTest {
  public:
    CrashWhileSaving()
        : progress(*new (mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Progress) {}
    ~CrashWhileSaving() override { munmap(&progress, sizeof(Progress)); }

  protected:
    /// Another process that saves the gains 1, 2, 3 ... without end, and has saved the first.
    [[nodiscard]] pid_t startSaving() {
        std::array<int, 2> pipe{};
        EXPECT_EQ(::pipe(pipe.data()), 0);
        progress.begun = progress.finished = 0;
        const pid_t child = fork();
        if (child == 0) {
            for (int number = 1;; ++number) {
                progress.begun = number;
                setGain(static_cast<float>(number));
                state->persist();
                progress.finished = number;
                if (number == 1 && ::write(pipe[1], "s", 1) != 1)
                    _exit(1);
            }
        }
        ::close(pipe[1]);
        char byte = 0;
        EXPECT_EQ(::read(pipe[0], &byte, 1), 1);
        ::close(pipe[0]);
        return child;
    }

    Progress &progress;
};

TEST_F(CrashWhileSaving, leavesTheOldFileOrTheNewOneWhole) {
    // A busy machine lets the saving process wait, and more kills come between two saves.
    constexpr int wantedHits = 100;
    constexpr auto deadline = std::chrono::seconds(60);
    const auto seed = std::random_device{}();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);

    launch();
    const auto begin = SteadyClock::now();
    state->persist();
    const Seconds oneSave = SteadyClock::now() - begin;
    std::uniform_real_distribution<double> moment(0.0, 2.0 * oneSave.count());

    Persisted expected = saved();
    int leftOld = 0, leftNew = 0;
    while (leftOld + leftNew < wantedHits) {
        ASSERT_LT(SteadyClock::now() - begin, deadline)
            << leftOld + leftNew << " kills hit a save: too few to show anything";
        const pid_t child = startSaving();
        // Not a wait for anything to happen: the moment is meant to be any.
        const auto end = SteadyClock::now() + Seconds(moment(random));
        while (SteadyClock::now() < end) {
        }
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));

        const Persisted left = saved(); // throws for a file that is not whole
        const float oldGain = static_cast<float>(progress.finished);
        const float newGain = static_cast<float>(progress.begun);
        ASSERT_TRUE(left.eqGlobalGainDB == oldGain || left.eqGlobalGainDB == newGain)
            << *left.eqGlobalGainDB << " of " << oldGain << " and " << newGain;
        expected.eqGlobalGainDB = left.eqGlobalGainDB;
        ASSERT_EQ(left, expected);
        if (oldGain != newGain)
            ++(left.eqGlobalGainDB == oldGain ? leftOld : leftNew);
    }
    RecordProperty("leftOld", leftOld);
    RecordProperty("leftNew", leftNew);
    RecordProperty("temporaryFiles", static_cast<int>(otherFiles().size()));
}

} // namespace
} // namespace quorbel::testing
