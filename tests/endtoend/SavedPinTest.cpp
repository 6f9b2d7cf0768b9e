#include "endtoend/LiveTest.h"
#include "support/soundserver/HastyClient.h"

#include <algorithm>
#include <csignal>
#include <string>

namespace quorbel {
namespace {

/// The device that the user has chosen for an application stays chosen, whatever comes to our tap.
class SavedPin : public LiveTest {
  protected:
    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");

    /// The program writes its next test value when the one before was not answered.
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
        std::string remembered; ///< what the session manager knows it by
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
                pin(program); // lost in the round before
            auto live = startLive(twelveDBLower());
            if (ending == SIGINT)
                bindMetadataAndLeave(server); // the server tells of no changes from now on
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
