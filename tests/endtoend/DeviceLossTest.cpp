#include "endtoend/LiveTest.h"
#include "support/soundserver/SoundCard.h"

#include <algorithm>
#include <utility>

namespace quorbel {
namespace {

/// Removal and return of the device in use.
class DeviceLoss : public LiveTest {
  protected:
    DeviceLoss()
        : LiveTest({48000,
                    {{"hdmi", "HDMI"}, {"headphones", "Headphones"}, {"speakers", "Speakers"}}}) {}

    /// Waits until the log names this device as the output.
    static testing::AssertionResult soonSaysDevice(const LiveProcess &live,
                                                   const std::string &description) {
        if (comesTrue(2.0, [&] { return saidDevice(live) == description; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "says that it plays on " << saidDevice(live);
    }
};

TEST_F(DeviceLoss, OfTheDefaultMovesSoundToTheNextDefaultAndBack) {
    // The server falls back to the earlier default, here not the device with the lowest id.
    std::string fallback = "headphones";
    std::string other = "hdmi";
    if (server.state().node(fallback)->id < server.state().node(other)->id)
        std::swap(fallback, other);
    server.setDefaultDevice(fallback);
    server.setDefaultDevice("speakers");
    // Makes a new recorder each time, because a new default moves recorders too.
    const auto soonHearsOn = [&](const std::string &device, Heard what) {
        const Recorder recorder(client, device, 10.0);
        return soonHears(recorder, what);
    };
    const auto description = [&](const std::string &device) {
        return server.state().node(device)->property("node.description");
    };
    playSequence();
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{}, {"--device", "speakers"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        auto live = startLive(twelveDBLower(), arguments);
        ASSERT_TRUE(soonPlaysInto("player", {tapName(*live)}));
        const Recorder standIn(client, fallback, 10.0);
        const auto lostAt = SteadyClock::now();
        server.removeDevice("speakers");
        EXPECT_TRUE(soonHears(standIn, Heard::processed));
        const std::chrono::duration<double> gap = SteadyClock::now() - lostAt;
        std::cout << "processed on the next device after " << gap.count() << " s, silent for "
                  << longestSeconds(standIn.recording(0), Heard::silence) << " s\n";
        EXPECT_LT(gap.count(), 2.0);
        EXPECT_TRUE(soonSaysDevice(*live, description(fallback)));
        EXPECT_TRUE(soonHearsOn(fallback, Heard::processed));
        EXPECT_TRUE(soonHearsOn(other, Heard::silence));
        EXPECT_EQ(server.state().defaultName("default.audio.sink"), fallback);
        EXPECT_TRUE(comesTrue(1.0, [&] { return saysItRuns(*live); }));

        // Until the device returns, processing follows the default.
        server.setDefaultDevice(other);
        EXPECT_TRUE(soonSaysDevice(*live, description(other)));
        EXPECT_TRUE(soonHearsOn(other, Heard::processed));
        EXPECT_TRUE(soonHearsOn(fallback, Heard::silence));
        server.setDefaultDevice(fallback);

        // A chosen device is used again; otherwise the current default remains.
        server.addDevice({"speakers", "Speakers"});
        const bool isChosen = !arguments.empty();
        EXPECT_TRUE(soonSaysDevice(*live, isChosen ? "Speakers" : description(fallback)));
        EXPECT_TRUE(soonHearsOn(isChosen ? "speakers" : fallback, Heard::processed));
        EXPECT_TRUE(soonHearsOn(isChosen ? fallback : "speakers", Heard::silence));
        EXPECT_TRUE(saysItRuns(*live));
        stopLive(live);
        server.setDefaultDevice("speakers");
    }
}

TEST_F(DeviceLoss, EndsWhenTheChosenDeviceReturnsWithPortsThatComeLate) {
    auto wireless = std::make_unique<LateDevice>(client, "wireless", 9600);
    waitFor("the device", 5.0,
            [&] { return server.desktopList("sinks").find("\twireless\t") != std::string::npos; });
    const Recorder &standIn = record("hdmi"); // the default
    playSequence();
    const auto live = startLive(twelveDBLower(), {"--device", "wireless"});
    const auto isPlayedTo = [](const LateDevice &device) {
        return comesTrue(2.0, [&] { return heardAs(device.lastSample()) == Heard::processed; });
    };
    ASSERT_TRUE(isPlayedTo(*wireless));
    for (int turn = 0; turn < 4; ++turn) { // whether ports come with the node is a race
        SCOPED_TRACE(turn);
        wireless.reset();
        ASSERT_TRUE(soonSaysDevice(*live, "HDMI"));
        ASSERT_TRUE(soonHears(standIn, Heard::processed));
        wireless = std::make_unique<LateDevice>(client, "wireless", 9600);
        ASSERT_TRUE(soonSaysDevice(*live, "wireless"));
        EXPECT_TRUE(isPlayedTo(*wireless));
        EXPECT_TRUE(soonHears(standIn, Heard::silence));
    }
}

TEST_F(DeviceLoss, LetsNoPulseAudioClientHang) {
    // The streams start before, during and after the removal of the device.
    constexpr int clientsPerTurn = 8;
    const auto live = startLive(twelveDBLower());
    for (int turn = 0; turn < 4; ++turn) {
        SCOPED_TRACE(turn);
        std::vector<std::unique_ptr<ChildProcess>> clients;
        for (int index = 0; index < clientsPerTurn; ++index) {
            if (index == 2 * turn)
                server.removeDevice("hdmi");
            clients.push_back(playWith("paplay", 0.3));
        }
        server.addDevice({"hdmi", "HDMI"});
        const auto hanging = [&] {
            return std::ranges::count_if(clients, [](auto &one) { return one->running(); });
        };
        EXPECT_TRUE(comesTrue(5.0, [&] { return hanging() == 0; })) << hanging() << " hang";
    }
}

} // namespace
} // namespace quorbel
