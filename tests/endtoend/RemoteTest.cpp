#include "endtoend/LiveTest.h"
#include "support/soundserver/ControlProgram.h"

#include <gmock/gmock.h>

namespace quorbel {
namespace {

using testing::HasSubstr;

class Remote : public LiveTest {
  protected:
    [[nodiscard]] ControlOutcome ctl(std::vector<std::string> arguments) const {
        return control(server, std::move(arguments));
    }
    /// Expects a failure with a single line on standard error.
    static void expectRefusal(const ControlOutcome &outcome, int status, const std::string &part) {
        EXPECT_EQ(outcome.status, status) << outcome;
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, HasSubstr(part));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome;
    }
};

TEST_F(Remote, LiveObeysAndSaysWhatItDoes) {
    expectRefusal(ctl({"status", "--json"}), 3, "Ostrafine does not run");
    expectRefusal(control(server, {"next"}, {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}}),
                  3, "no session bus answers");
    const Recorder &recorder = record("speakers");
    playSequence();
    auto live = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(recorder, Heard::processed));
    ASSERT_TRUE(comesTrue(2.0, [&] { return ctl({"status"}).status == 0; }));
    const auto watch = server.start({LiveProcess::program(), "ctl", "watch"});
    const auto soonWatched = [&](const std::string &line) {
        return comesTrue(3.0, [&] { return watch->output().find(line) != std::string::npos; });
    };
    EXPECT_TRUE(soonWatched("State     running\nPreset    Flat\n")) << watch->errors();

    EXPECT_EQ(ctl({"get", "eqGlobalGainDB"}).output, "-12\n");
    EXPECT_EQ(ctl({"compare", "on"}).status, 0);
    EXPECT_TRUE(soonWatched("Compare   yes\n"));
    EXPECT_TRUE(soonHears(recorder, Heard::processed)) << "as loud as processed";
    EXPECT_EQ(ctl({"compare", "off"}).status, 0);
    EXPECT_EQ(ctl({"set", "eqGlobalGainDB", "0"}).status, 0);
    EXPECT_TRUE(soonHears(recorder, Heard::dry));
    EXPECT_EQ(ctl({"set", "outputDeviceUID", "hdmi"}).status, 0);
    EXPECT_TRUE(soonHears(record("hdmi"), Heard::dry));
    EXPECT_TRUE(soonWatched("Output    HDMI  (hdmi)\n"));

    EXPECT_EQ(ctl({"toggle"}).status, 0);
    EXPECT_TRUE(soonPlaysInto("player", {"speakers"}));
    EXPECT_TRUE(soonWatched("State     stopped\n"));
    expectRefusal(ctl({"compare", "on"}), 1, "processing does not run");
    EXPECT_EQ(ctl({"start"}).status, 0);
    EXPECT_THAT(ctl({"status", "--json"}).output, HasSubstr(R"("state":"running"})"));
    EXPECT_TRUE(soonPlaysInto("player", {tapName(*live)}));
    EXPECT_EQ(ctl({"next"}).output, "MR5 Neutral\n");
    EXPECT_EQ(ctl({"previous"}).output, "Flat\n");
    EXPECT_EQ(ctl({"preset", "bass heavy"}).output, "Bass Heavy\n");
    EXPECT_TRUE(soonWatched("Preset    Bass Heavy\n"));

    expectRefusal(ctl({"preset", "Quiet"}), 1, R"(no preset is named "Quiet")");
    expectRefusal(ctl({"get", "reverb"}), 1, "there are: bands, spatial");
    expectRefusal(ctl({"set", "spatial.reverbMix", "-1"}), 1, "the range from 0 to 60");
    for (const char *value : {"[0.5]", "'x'", "@ay []", "<<1>>"}) {
        const auto call = server.start(
            {"gdbus", "call", "--session", "--dest=com.quorbel.Ostrafine1",
             "--object-path=/com/quorbel/Ostrafine1", "--method=com.quorbel.Ostrafine1.Set",
             "spatial.reverbMix", "<" + std::string(value) + ">"});
        EXPECT_EQ(call->exitStatusWithin(5.0), 1);
        EXPECT_THAT(call->errors(), HasSubstr("Error.InvalidArgs")) << value;
    }

    stopLive(live);
    EXPECT_EQ(watch->exitStatusWithin(5.0), 3);
    EXPECT_EQ(watch->errors(), "ostrafine-cli: Ostrafine has ended\n");
}

} // namespace
} // namespace quorbel
