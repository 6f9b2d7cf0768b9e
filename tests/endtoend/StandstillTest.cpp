#include "endtoend/LiveTest.h"

#include <csignal>

namespace quorbel {
namespace {

/// One process is stopped while others depend on it.
class Standstill : public LiveTest {
  protected:
    void playPinned() {
        playSequence({"pinned"});
        server.moveApplication("pinned", "hdmi");
        ASSERT_TRUE(soonHears(hdmi, Heard::dry));
        before = settledMemory();
    }

    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");
    SessionMemory before;
};

TEST_F(Standstill, OfTheServerDelaysNoEndAndLosesNothing) {
    playPinned();
    for (const int ending : {SIGINT, SIGKILL}) {
        SCOPED_TRACE(sigabbrev_np(ending));
        const auto live = startLive(twelveDBLower());
        ASSERT_TRUE(soonHears(speakers, Heard::processed));
        server.pause();
        live->process().signal(ending);
        EXPECT_TRUE(live->process().exitStatusWithin(3.0).has_value());
        // Stays paused for longer than any timeout for an answer.
        comesTrue(3.0, [&] { return live->helpers().empty(); });
        server.resume();
        EXPECT_TRUE(soonHears(hdmi, Heard::dry));
        EXPECT_TRUE(comesTrue(2.0, [&] { return live->helpers().empty(); }));
        EXPECT_FALSE(exists(journal())) << "with all that it named restored";
        EXPECT_TRUE(soonIsAsBefore(before));
    }
}

TEST_F(Standstill, OfOursLetsApplicationsBeHeardWithinThreeSeconds) {
    playPinned();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(speakers, Heard::processed));
    live->process().signal(SIGSTOP);
    EXPECT_TRUE(soonHears(hdmi, Heard::dry, 3.0));
    live->process().signal(SIGCONT);
    live->process().stop(5.0, SIGINT);
    EXPECT_TRUE(soonHears(hdmi, Heard::dry));
    EXPECT_TRUE(soonIsAsBefore(before));
}

TEST_F(Standstill, OfTheWatchdogForEverLeadsToANewOne) {
    playPinned();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(speakers, Heard::processed));
    const auto first = live->helpers();
    ASSERT_EQ(first.size(), 1U);
    kill(first.front(), SIGKILL);
    EXPECT_TRUE(comesTrue(2.0, [&] {
        const auto now = live->helpers();
        return now.size() == 1 && now != first;
    }));
    live->process().signal(SIGKILL);
    EXPECT_TRUE(soonHears(hdmi, Heard::dry, 1.0));
    EXPECT_TRUE(soonIsAsBefore(before));
}

} // namespace
} // namespace quorbel
