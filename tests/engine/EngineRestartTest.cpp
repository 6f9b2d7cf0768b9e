#include "engine/EngineFixture.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace quorbel::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class EngineRestartTest : public EngineTest {
  protected:
    [[nodiscard]] int restarts() const { return engine->upheavals().outputRestarts; }
};

TEST_F(EngineRestartTest, ABurstOfChoicesMovesPlaybackOnceToTheLast) {
    hardware.addDevice({.uid = "usb", .name = "USB"});
    devices.refresh();
    hardware.play(sine(1000.0));
    setBand(5, 1000.0F, -6.0F);
    start();
    play(0.1);
    const std::string tap = hardware.taps().front().uuid;
    for (const char *uid : {"hdmi", "speakers", "usb"}) {
        choose(uid);
        play(0.1);
    }
    play(0.049);
    EXPECT_EQ(restarts(), 0);
    play(0.002);
    EXPECT_EQ(restarts(), 1);
    EXPECT_EQ(hardware.taps().front().uuid, tap) << "capture is not touched";
    EXPECT_THAT(log.takeWith("playback: output="), SizeIs(2));
    play(0.1);
    EXPECT_NEAR(toneOn("usb"), 0.25 * std::pow(10.0, -6.0 / 20.0), 1e-3);
    EXPECT_EQ(toneOn("speakers"), 0.0);
}

TEST_F(EngineRestartTest, ChoicesThatChangeNothingRestartNothing) {
    choose("hdmi"); // takes effect at the start
    play(0.5);
    EXPECT_FALSE(hardware.isPlaying());
    hardware.play(sine(1000.0));
    start();
    choose("hdmi");
    play(0.5);
    EXPECT_EQ(restarts(), 0) << "the same";
    EXPECT_NEAR(toneOn("hdmi"), 0.25, 1e-3);
    choose("speakers");
    stop();
    play(0.5);
    EXPECT_EQ(restarts(), 0) << "a stop came first";
    EXPECT_EQ(state(), "stopped");
}

TEST_F(EngineRestartTest, ARestartThatFailsIsTheEndWithItsText) {
    start();
    hardware.operations().fail(Operation::startOutput, -16);
    choose("hdmi");
    play(0.2);
    EXPECT_EQ(state(), "Couldn't start playback on the output device (OSStatus -16).");
    expectNothingLeft();
    play(2.0);
    EXPECT_THAT(log.takeWith("într-o secundă"), IsEmpty()) << "the timers have stopped";
}

TEST_F(EngineRestartTest, AnotherDefaultOutputRebuildsTheCapture) {
    hardware.play(sine(1000.0), "speakers");
    hardware.operations().during(Operation::startOutput,
                                 [this] { hardware.setDefaultOutput("hdmi"); });
    start();
    EXPECT_EQ(hardware.aggregates().front().mainDeviceUID, "hdmi") << "in the middle of a start";
    std::string before = hardware.taps().front().uuid;
    hardware.setDefaultOutput("speakers");
    clock.runPending();
    ASSERT_THAT(hardware.aggregates(), SizeIs(1));
    EXPECT_EQ(hardware.aggregates().front().mainDeviceUID, "speakers");
    EXPECT_NE(std::exchange(before, hardware.taps().front().uuid), hardware.taps().front().uuid)
        << "nothing is reused";
    EXPECT_EQ(state(), "running");
    play(0.1);
    EXPECT_NEAR(toneOn("speakers"), 0.25, 1e-3) << "playback stays where it was";

    hardware.addDevice({.uid = "usb"});
    clock.runPending();
    EXPECT_EQ(hardware.taps().front().uuid, before) << "news that change nothing for the capture";
}

/// Devices come, go and reuse ids, the default follows late, and the user chooses. Once all is
/// settled, the chosen device plays, or else the default.
TEST_F(EngineRestartTest, PlaysOnTheChoiceElseOnTheDefaultAfterAnyStormOfChanges) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto upTo = [&](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    std::vector<std::string> present{"speakers", "hdmi", "usb"}, absent;
    hardware.addDevice({.uid = "usb"});
    hardware.setDefaultLagging(true);
    hardware.setReusingIDs(true);
    hardware.play(sine(1000.0));
    start();
    std::string chosen = "speakers", defaultUID = "speakers";
    const auto move = [](auto &from, auto &to, std::size_t index) {
        to.push_back(from[index]);
        from.erase(from.begin() + static_cast<std::ptrdiff_t>(index));
        return to.back();
    };
    for (int rest = 0; rest < 40; ++rest) {
        for (std::size_t change = 0, count = 1 + upTo(6); change < count; ++change) {
            switch (upTo(5)) {
            case 0:
                if (!present.empty())
                    hardware.removeDevice(move(present, absent, upTo(present.size())));
                break;
            case 1:
                if (!absent.empty())
                    hardware.addDevice({.uid = move(absent, present, upTo(absent.size()))});
                break;
            case 2: // replaced before the change is reported
                if (!present.empty()) {
                    const std::string replaced = present[upTo(present.size())];
                    hardware.removeDevice(replaced);
                    hardware.addDevice({.uid = replaced});
                }
                break;
            case 3:
                if (!present.empty())
                    hardware.setDefaultOutput(defaultUID = present[upTo(present.size())]);
                break;
            default:
                if (const auto &listed = devices.outputDevices(); !listed.empty()) {
                    engine->setOutputDevice(listed[upTo(listed.size())]);
                    chosen = *engine->outputChoice();
                }
            }
            play(0.1 * static_cast<double>(upTo(3)));
        }
        if (present.empty())
            hardware.addDevice({.uid = move(absent, present, 0)});
        if (std::ranges::count(present, defaultUID) == 0)
            hardware.setDefaultOutput(defaultUID = present.front());
        play(4.0); // longest recovery after a failure
        const bool isThere = std::ranges::count(present, chosen) > 0;
        ASSERT_EQ(state(), "running");
        ASSERT_EQ(engine->outputDevice()->uid, isThere ? chosen : defaultUID);
        ASSERT_EQ(engine->outputChoice(), chosen);
        ASSERT_NEAR(toneOn(engine->outputDevice()->uid), 0.25, 1e-3);
    }
}

} // namespace
} // namespace quorbel::testing
