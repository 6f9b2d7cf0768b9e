#include "endtoend/LiveTest.h"

#include <algorithm>

namespace quorbel {
namespace {

/// Capture of streams, and their return to their devices.
class Routing : public LiveTest {
  protected:
    Recorder &speakers = record("speakers");
    Recorder &hdmi = record("hdmi");
};

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
    // The loopback has no real-time thread and loses cycles on a busy machine, so one faultless
    // recording is enough.
    SequenceReport report;
    EXPECT_TRUE(comesTrue(20.0, [&] {
        report = SequenceReport::of(hdmi.next(2.0));
        return report.intact();
    })) << report;
}

/// The desktop's lists and the user's own settings.
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
        // The long form lists every name and property.
        const std::string list = server.run({"pactl", "list", kind});
        EXPECT_EQ(list.find("quorbel"), std::string::npos) << list;
        EXPECT_EQ(list.find("Ostrafine"), std::string::npos) << list;
    }
    EXPECT_EQ(std::ranges::count(server.desktopList("sinks"), '\n'),
              std::ranges::count(listsBefore, '\n'));
}

} // namespace
} // namespace quorbel
