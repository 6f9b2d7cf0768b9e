#include "endtoend/LiveTest.h"

#include <algorithm>

namespace quorbel {
namespace {

/// Processing that cannot start ends at once, with an error message for the user.
class Failure : public LiveTest {
  protected:
    /// Expects one line that contains `part`.
    static void expectOneLine(const std::string &errors, const std::string &part) {
        EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
        EXPECT_NE(errors.find(part), std::string::npos) << errors;
    }
};

TEST_F(Failure, ASecondInstanceRefusesAndTheFirstContinues) {
    const Recorder &speakers = record("speakers");
    playSequence();
    const auto first = startLive(twelveDBLower());
    ASSERT_TRUE(soonHears(speakers, Heard::processed));
    LiveProcess second(server, twelveDBLower());
    EXPECT_EQ(second.process().exitStatusWithin(3.0), 1);
    expectOneLine(second.process().errors(), "already");
    EXPECT_TRUE(soonHears(speakers, Heard::processed));
}

TEST_F(Failure, AnUnknownDeviceIsNamedAndAMissingServerExplained) {
    const auto refusal = [&](const std::vector<std::string> &arguments) {
        LiveProcess live(server, twelveDBLower(), arguments);
        EXPECT_EQ(live.process().exitStatusWithin(3.0), 1);
        return live.process().errors();
    };
    expectOneLine(refusal({"--device", "kitchen"}), "kitchen");
    server.crash();
    expectOneLine(refusal({}), "systemctl --user start");
}

TEST_F(Failure, TheDeviceListIsTheUsersDevices) {
    const std::string cli = LiveProcess::program();
    for (const std::string &list :
         {server.run({cli, "devices"}), server.run({cli, "devices", "--json"})})
        for (const char *text : {"speakers", "Speakers", "hdmi", "HDMI"})
            EXPECT_NE(list.find(text), std::string::npos) << list;
}

} // namespace
} // namespace quorbel
