#include "endtoend/LiveTest.h"
#include "support/soundserver/HastyClient.h"

#include <algorithm>
#include <csignal>
#include <string>

namespace quorbel {
namespace {

/// Restarts of the session manager, as after an update or a crash, while the devices stay.
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
    const int restarts = slowTestsWanted() ? 60 : 15; // less than half a second each
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
        // Waits until the session manager links streams, which takes seconds on a busy machine.
        const Recorder speakers(client, "speakers", 10.0);
        ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
        ASSERT_TRUE(soonHears(speakers, Heard::processed));
        EXPECT_TRUE(comesTrue(1.0, [&] { return saysItRuns(*live); }));
    }
}

/// A client that leaves while binding the session manager's metadata stops the server from
/// reporting changes of the default device and of applications' targets.
using LostChanges = LiveTest;

TEST_F(LostChanges, AreFollowedWithoutEvents) {
    const Recorder hdmi(client, "hdmi", 60.0);
    playSequence();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    bindMetadataAndLeave(server);
    server.setDefaultDevice("hdmi");
    EXPECT_TRUE(soonHears(hdmi, Heard::processed, 4.0));
}

/// The user's choice of a device for an application survives its capture.
class SavedPin : public LiveTest {
  protected:
    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");

    /// Waits for the program's second test value, written after the first got no answer.
    void waitUntilItKnowsThatItIsToldNothing() {
        std::string first;
        waitFor("another test value", 5.0, [&] {
            const auto metadata = server.state().metadata;
            const auto test = std::ranges::find_if(metadata, [](const auto &entry) {
                return entry.first.second == "quorbel.hearing";
            });
            if (test == metadata.end())
                return false;
            if (first.empty())
                first = test->second;
            return test->second != first;
        });
    }
};

TEST_F(SavedPin, OfAProgramThatStartsMeanwhileIsKept) {
    struct Program {
        std::string name;
        std::string remembered; ///< its name in the session manager's memory
    };
    const Program programs[] = {{"pw-play", "Music"}, {"paplay", "paplay"}};
    const auto play = [&](const Program &program) { return playWith(program.name, 20.0); };
    const auto pin = [&](const Program &program) {
        const auto application = play(program);
        server.moveApplication(program.name, "hdmi");
        waitFor("the choice is remembered", 3.0, [&] {
            return remembersTarget(server.storedStreams(), program.remembered, "hdmi");
        });
    };
    for (const Program &program : programs)
        pin(program);
    const SessionMemory before = settledMemory();
    for (const Program &program : programs) {
        for (const int ending : {SIGINT, SIGKILL}) {
            SCOPED_TRACE(program.name + " and " + sigabbrev_np(ending));
            if (!remembersTarget(server.storedStreams(), program.remembered, "hdmi"))
                pin(program); // lost in the previous round
            auto live = startLive(twelveDBLower());
            if (ending == SIGINT)
                bindMetadataAndLeave(server); // from now on the server reports no changes
            waitUntilItKnowsThatItIsToldNothing();
            auto application = play(program);
            EXPECT_TRUE(soonHears(speakers, Heard::processed));
            EXPECT_TRUE(soonPlaysInto(program.name, {tapName(*live)}));
            live->process().signal(ending);
            EXPECT_TRUE(soonHears(hdmi, Heard::dry));
            EXPECT_TRUE(soonPlaysInto(program.name, {"hdmi"}));
            application.reset();
            application = play(program);
            EXPECT_TRUE(soonPlaysInto(program.name, {"hdmi"})) << "at its next start";
            EXPECT_TRUE(soonHears(hdmi, Heard::dry));
        }
    }
    EXPECT_TRUE(soonIsAsBefore(before));
}

} // namespace
} // namespace quorbel
