#include "endtoend/window/WindowTest.h"
#include "support/soundserver/ControlProgram.h"

#include <gmock/gmock.h>

namespace quorbel {
namespace {

using testing::HasSubstr;

/// Requests an action of the menu entry as desktops do.
void activate(const PrivateSoundServer &server, const std::string &action) {
    const auto call =
        server.start({"gdbus", "call", "--session", "--dest=com.quorbel.Ostrafine",
                      "--object-path=/com/quorbel/Ostrafine",
                      "--method=org.freedesktop.Application.ActivateAction", action, "[]", "{}"});
    EXPECT_EQ(call->exitStatusWithin(5.0), 0) << call->errors();
}

TEST_F(WindowTest, ObeysACommandLikeItsUser) {
    const auto ctl = [](std::vector<std::string> arguments) {
        return control(server(), std::move(arguments));
    };
    EXPECT_EQ(ctl({"status"}).status, 3);
    open();
    playTone();
    ASSERT_TRUE(soonPlaysInto("speakers"));
    EXPECT_THAT(ctl({"status"}).output, HasSubstr("State     stopped\n"));
    EXPECT_EQ(ctl({"start"}).status, 0);
    EXPECT_TRUE(soonShows({"label", "LIVE"}));
    EXPECT_TRUE(soonHears(toneLevelDB));
    EXPECT_EQ(ctl({"set", "bands.6.gainDB", "6"}).status, 0);
    EXPECT_TRUE(soonHears(toneLevelDB + 6.0));
    EXPECT_EQ(read({"slider", "Band 7 gain"})["value"], 6.0);
    EXPECT_TRUE(soonShows({"combo box", "Preset", "Custom"}));
    EXPECT_THAT(ctl({"status", "--json"}).output, HasSubstr(R"("modified":true)"));
    EXPECT_EQ(ctl({"compare", "on"}).status, 0);
    EXPECT_TRUE(soonShows({"label", "Unprocessed sound"}));
    EXPECT_TRUE(soonHears(toneLevelDB + 5.0, 2.0)) << "as loud as the last three seconds";
    EXPECT_EQ(ctl({"compare", "off"}).status, 0);
    pressButton("Undo Band gain");
    EXPECT_TRUE(soonHears(toneLevelDB));
    EXPECT_EQ(ctl({"preset", "bass heavy"}).status, 0);
    EXPECT_TRUE(soonShows({"combo box", "Preset", "Bass Heavy"}));
    EXPECT_TRUE(comesTrue(3.0, [&] { return saved()["activePresetName"] == "Bass Heavy"; }));
    activate(server(), "PreviousPreset");
    EXPECT_TRUE(soonShows({"combo box", "Preset", "MR5 Deep Bass (Desk)"}));
    activate(server(), "NextPreset");
    EXPECT_TRUE(soonShows({"combo box", "Preset", "Bass Heavy"}));
    EXPECT_EQ(ctl({"toggle"}).status, 0);
    EXPECT_TRUE(soonShows({"label", "STOPPED"}));

    // Requests go to the processing program, otherwise to the remaining one.
    auto live = std::make_unique<LiveProcess>(server(), LiveSettings::flat());
    live->waitUntilRunning();
    EXPECT_TRUE(comesTrue(
        3.0, [&] { return ctl({"status"}).output.find("running") != std::string::npos; }));
    EXPECT_EQ(ctl({"stop"}).status, 0);
    pressButton("Start");
    EXPECT_TRUE(soonShows({"label", "LIVE"})) << "a stopped one keeps nobody out";
    EXPECT_TRUE(comesTrue(3.0, [&] {
        return ctl({"get", "activePresetName"}).output == "Bass Heavy\n";
    }));
    pressButton("Stop");
    live.reset();
    EXPECT_EQ(ctl({"get", "activePresetName"}).output, "Bass Heavy\n");
}

} // namespace
} // namespace quorbel
