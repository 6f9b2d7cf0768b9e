#include "endtoend/LiveTest.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

/// Which streams are captured, and where each goes.
class Routing : public LiveTest {
  protected:
    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");
};

TEST_F(Routing, EveryApplicationIsCaughtAndOurOwnOutputIsNot) {
    playSequence({"before"});
    const auto live = startLive(twelveDBLower());
    EXPECT_TRUE(soonPlaysInto("before", {tapName(*live)}));
    EXPECT_TRUE(soonHears(speakers, Heard::processed));
    closePlayer();

    playSequence({"after"});
    EXPECT_TRUE(soonPlaysInto("after", {tapName(*live)}));
    EXPECT_TRUE(soonHears(speakers, Heard::processed));
    EXPECT_TRUE(
        soonPlaysInto("quorbel.out." + std::to_string(live->process().pid()), {"speakers"}));
    EXPECT_EQ(heardIn(hdmi.last(0.5)), Heard::silence);
}

TEST_F(Routing, ProgramsOfBothInterfacesAreProcessed) {
    const auto live = startLive(twelveDBLower());
    for (const char *program : {"pw-play", "paplay"}) {
        const auto application = playWith(program, 1.5);
        EXPECT_TRUE(soonHears(speakers, Heard::processed)) << program;
        EXPECT_EQ(application->exitStatusWithin(5.0), 0) << application->errors();
    }
}

TEST_F(Routing, TheChosenDevicePlaysAndNotTheDefault) {
    playSequence();
    const auto live = startLive(twelveDBLower(), {"--device", "hdmi"});
    EXPECT_TRUE(soonHears(hdmi, Heard::processed));
    EXPECT_TRUE(soonHears(speakers, Heard::silence));
}

TEST_F(Routing, ApplicationsThatChoseADeviceAreCaughtAndGoBackToIt) {
    playSequence({"on speakers", "speakers"});
    auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(speakers, Heard::processed));
    stopLive(live);
    EXPECT_TRUE(soonHears(speakers, Heard::dry, 1.0));
    closePlayer();

    playSequence({"on hdmi", "hdmi"});
    live = startLive(twelveDBLower());
    EXPECT_TRUE(soonHears(speakers, Heard::processed));
    EXPECT_TRUE(soonHears(hdmi, Heard::silence));
    stopLive(live);
    EXPECT_TRUE(soonHears(hdmi, Heard::dry, 1.0));
    EXPECT_TRUE(soonHears(speakers, Heard::silence));
}

TEST_F(Routing, AnApplicationThatMustNotBeMovedPlaysOn) {
    Player::Options fixed("fixed");
    fixed.mayBeMoved = false;
    playSequence(fixed);
    ASSERT_TRUE(soonHears(speakers, Heard::dry));
    auto live = startLive(twelveDBLower());
    EXPECT_TRUE(soonPlaysInto("fixed", {"speakers"}));
    EXPECT_TRUE(soonHears(speakers, Heard::dry));
    stopLive(live);
    EXPECT_TRUE(soonHears(speakers, Heard::dry));
}

TEST_F(Routing, AStreamThatTheUserMovesStaysWhereTheUserPutIt) {
    playSequence({"moved"});
    auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(speakers, Heard::processed));
    server.moveApplication("moved", "hdmi");
    EXPECT_TRUE(soonPlaysInto("moved", {"hdmi"}));
    EXPECT_TRUE(soonHears(hdmi, Heard::dry));
    stopLive(live);
    EXPECT_TRUE(soonHears(hdmi, Heard::dry));
    EXPECT_TRUE(soonPlaysInto("moved", {"hdmi"}));
    // And the session manager remembers that, and not us.
    EXPECT_TRUE(comesTrue(3.0, [&] {
        return remembersTarget(server.storedStreams(), "moved", "hdmi");
    })) << testing::PrintToString(server.storedStreams());
}

TEST_F(Routing, AVirtualDeviceOfTheUsersCanBeChosen) {
    const auto loopback =
        server.start({"pw-loopback", "--name=virtual",
                      "--capture-props=media.class=Audio/Sink node.name=virtual",
                      "--playback-props=node.name=virtual.output target.object=hdmi"});
    waitFor("the virtual device", 5.0, [&] { return server.state().node("virtual") != nullptr; });
    playSequence();
    const auto live = startLive(LiveSettings::flat(), {"--device", "virtual"});
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_TRUE(soonPlaysInto("virtual.output", {"hdmi"}));
    ASSERT_TRUE(soonHears(hdmi, Heard::dry));
    hdmi.skip(1.0);
    const auto report = SequenceReport::of(hdmi.nextUndisturbed(5.0));
    EXPECT_TRUE(report.intact()) << report;
}

TEST_F(Routing, ShortPulseAudioClientsNeverHang) {
    const auto live = startLive(twelveDBLower());
    for (int run = 0; run < 40; ++run) {
        ASSERT_EQ(playWith("paplay", 0.3)->exitStatusWithin(5.0), 0) << "run " << run;
    }
    std::vector<std::unique_ptr<ChildProcess>> together;
    for (int run = 0; run < 20; ++run) {
        together.push_back(playWith("paplay", 0.3));
    }
    EXPECT_TRUE(comesTrue(2.0, [&] { return peak(speakers.last(0.1).left) > 0.01F; }));
    for (const auto &application : together) {
        EXPECT_EQ(application->exitStatusWithin(8.0), 0) << application->errors();
    }
}

/// What a desktop shows and the user's own settings.
class Desktop : public LiveTest {};

TEST_F(Desktop, ShowsNothingOfOursAndKeepsTheUsersDefaults) {
    playSequence();
    const auto defaults = [&] {
        const ServerState state = server.state();
        return std::pair(state.defaultName("default.audio.sink"),
                         state.defaultName("default.configured.audio.sink"));
    };
    const auto listsBefore = server.desktopList("sinks");
    const auto defaultsBefore = defaults();
    const auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_EQ(defaults(), defaultsBefore);
    for (const char *kind : {"sinks", "sources", "sink-inputs", "source-outputs"}) {
        // The long form has every name and property.
        const std::string list = server.run({"pactl", "list", kind});
        EXPECT_EQ(list.find("quorbel"), std::string::npos) << list;
        EXPECT_EQ(list.find("Ostrafine"), std::string::npos) << list;
    }
    EXPECT_EQ(std::ranges::count(server.desktopList("sinks"), '\n'),
              std::ranges::count(listsBefore, '\n'));
}

TEST_F(Desktop, VolumeControlsActOnTheUsersDevice) {
    const Recorder &recorder = record("speakers");
    playTone(-20.0);
    const auto live = startLive(LiveSettings::flat());
    ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    server.run({"pactl", "set-sink-volume", "@DEFAULT_SINK@", "50%"});
    EXPECT_NE(server.run({"pactl", "get-sink-volume", "speakers"}).find("50%"), std::string::npos);
    // 50 % of the cubic scale. A null sink's volume acts on what its monitor gives.
    EXPECT_TRUE(comesTrue(3.0, [&] {
        const auto heard = recorder.last(0.2);
        return std::abs(toneLevelDB(heard.left, 1000.0, 48000.0) - (-20.0 - 18.06)) < 0.1;
    })) << toneLevelDB(recorder.last(0.2).left, 1000.0, 48000.0);
}

} // namespace
} // namespace quorbel
