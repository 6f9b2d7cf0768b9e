#include "endtoend/LiveTest.h"
#include "support/soundserver/HastyClient.h"

namespace quorbel {
namespace {

/// The session manager is restarted, for an update or after a crash, under devices that stay.
class SessionManager : public LiveTest {
  protected:
    static PrivateSoundServer::Options options() {
        PrivateSoundServer::Options options;
        options.devicesOutlastSessionManager = true;
        return options;
    }

    SessionManager() : LiveTest(options()) {}
};

TEST_F(SessionManager, RestartedIsFollowedWithinTwoSeconds) {
    const int restarts = slowTestsWanted() ? 60 : 15; // of less than half a second each
    playSequence();
    server.restartSessionManager();
    if (const auto plays = soonPlaysInto("player", {"speakers"}); !plays) {
        ASSERT_TRUE(server.state().targetsOf("player").empty()) << plays.message();
        GTEST_SKIP() << "this session manager links nothing to devices that were there before it, "
                        "even without us";
    }
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    for (int restart = 0; restart < restarts; ++restart) {
        SCOPED_TRACE(restart);
        server.restartSessionManager();
        // Linked once the session manager is at work, which takes it seconds on a busy machine.
        const Recorder speakers(client, "speakers", 10.0);
        ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
        ASSERT_TRUE(soonHears(speakers, Heard::processed));
        EXPECT_TRUE(comesTrue(1.0, [&] { return saysItRuns(*live); }));
    }
}

/// A client that leaves while it binds the session manager's metadata makes the server keep all
/// later changes to itself: the default device, and where users move applications.
using LostChanges = LiveTest;

TEST_F(LostChanges, AreFollowedAllTheSame) {
    const Recorder hdmi(client, "hdmi", 60.0);
    playSequence();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    bindMetadataAndLeave(server);
    server.setDefaultDevice("hdmi");
    EXPECT_TRUE(soonHears(hdmi, Heard::processed, 4.0));
}

} // namespace
} // namespace quorbel
