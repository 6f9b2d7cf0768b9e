#include "engine/EngineFixture.h"

#include <algorithm>
#include <cmath>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class EngineRestartTest : public EngineTest {
  protected:
    [[nodiscard]] double level(const std::string &uid) {
        (void)heard(uid);
        play(0.5);
        return fitSine(heard(uid).left, 1000.0, 48000.0).amplitude;
    }
};

TEST_F(EngineRestartTest, ABurstOfChoicesMovesPlaybackOnceToTheLast) {
    hardware.addDevice({.uid = "usb", .name = "USB"});
    devices.refresh();
    hardware.play(sine(1000.0));
    setBand(5, 1000.0F, -6.0F);
    start();
    play(0.1);
    (void)actions();
    (void)log.take();

    choose("hdmi");
    play(0.1);
    choose("speakers");
    play(0.1);
    choose("usb");
    play(0.149);
    EXPECT_THAT(actions(), IsEmpty());
    play(0.002);
    EXPECT_THAT(actions(),
                ElementsAre(Operation::stopOutput, Operation::setDevice, Operation::startOutput))
        << "capture is not touched";
    EXPECT_THAT(log.takeWith("playback: output="), ElementsAre(HasSubstr("'USB'")));
    EXPECT_EQ(state(), "running");
    play(0.1);
    EXPECT_NEAR(level("usb"), 0.25 * std::pow(10.0, -6.0 / 20.0), 1e-3);
    EXPECT_EQ(level("speakers"), 0.0);
}

TEST_F(EngineRestartTest, TheSameChoiceRestartsNothing) {
    start();
    (void)actions();
    choose("speakers");
    play(0.5);
    EXPECT_THAT(actions(), IsEmpty());
}

TEST_F(EngineRestartTest, AChoiceWhileStoppedWaitsForTheStart) {
    (void)actions();
    choose("hdmi");
    play(0.5);
    EXPECT_THAT(actions(), IsEmpty());
    hardware.play(sine(1000.0));
    start();
    play(0.1);
    EXPECT_NEAR(level("hdmi"), 0.25, 1e-3);
}

TEST_F(EngineRestartTest, AStopCancelsTheRestart) {
    start();
    choose("hdmi");
    stop();
    (void)actions();
    play(0.5);
    EXPECT_THAT(actions(), IsEmpty());
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
    start();
    play(0.1);
    const std::string before = hardware.taps().front().uuid;
    (void)actions();
    hardware.setDefaultOutput("hdmi");
    clock.runPending();
    EXPECT_THAT(actions(),
                ElementsAre(Operation::stopDevice, Operation::destroyIOProc,
                            Operation::destroyAggregateDevice, Operation::destroyProcessTap,
                            Operation::createProcessTap, Operation::createAggregateDevice,
                            Operation::createIOProc, Operation::startDevice));
    ASSERT_THAT(hardware.aggregates(), SizeIs(1));
    EXPECT_EQ(hardware.aggregates().front().mainDeviceUID, "hdmi");
    EXPECT_NE(hardware.taps().front().uuid, before) << "nothing is reused";
    EXPECT_EQ(state(), "running");
    play(0.1);
    EXPECT_NEAR(level("speakers"), 0.25, 1e-3) << "playback stays where it was";

    // News that change nothing for the capture do not touch it.
    (void)actions();
    hardware.addDevice({.uid = "usb"});
    clock.runPending();
    EXPECT_THAT(actions(), IsEmpty());
}

TEST_F(EngineRestartTest, AChangeInTheMiddleOfAStartIsNotMissed) {
    hardware.operations().during(Operation::startOutput,
                                 [this] { hardware.setDefaultOutput("hdmi"); });
    start();
    EXPECT_EQ(state(), "running");
    EXPECT_EQ(hardware.aggregates().front().mainDeviceUID, "hdmi");
}

TEST_F(EngineRestartTest, ARebuildThatFailsIsTheEndWithItsText) {
    start();
    hardware.operations().fail(Operation::createAggregateDevice, -12);
    hardware.setDefaultOutput("hdmi");
    clock.runPending();
    EXPECT_EQ(state(), "System audio capture failed: couldn't create capture aggregate device "
                       "(OSStatus -12).");
    expectNothingLeft();
}

TEST_F(EngineRestartTest, UnpluggedItMovesToTheDefaultAndBackWhenItReturns) {
    hardware.play(sine(1000.0));
    choose("hdmi");
    start();
    play(0.1);
    hardware.removeDevice("hdmi");
    play(0.2);
    EXPECT_EQ(engine->outputDevice()->uid, "speakers");
    EXPECT_EQ(state(), "running");
    EXPECT_NEAR(level("speakers"), 0.25, 1e-3);
    hardware.addDevice({.uid = "hdmi"});
    play(0.5);
    EXPECT_EQ(engine->outputDevice()->uid, "hdmi");
    EXPECT_NEAR(level("hdmi"), 0.25, 1e-3);
    EXPECT_EQ(engine->upheavals().outputRestarts, 2);

    // Unless the user has chosen meanwhile, be it the stand-in itself.
    hardware.removeDevice("hdmi");
    play(0.5);
    choose("speakers");
    hardware.addDevice({.uid = "hdmi"});
    play(0.5);
    EXPECT_EQ(engine->outputDevice()->uid, "speakers");
}

TEST_F(EngineRestartTest, ReplacedByItselfItIsBoundAnew) {
    hardware.play(sine(1000.0));
    choose("hdmi");
    start();
    play(0.1);
    hardware.removeDevice("hdmi");
    hardware.addDevice({.uid = "hdmi"});
    play(0.3);
    EXPECT_EQ(engine->outputDevice()->uid, "hdmi");
    EXPECT_NEAR(level("hdmi"), 0.25, 1e-3);
}

TEST_F(EngineRestartTest, WithTheDefaultUnpluggedBothSidesMove) {
    hardware.play(sine(1000.0));
    start();
    play(0.1);
    hardware.removeDevice("speakers");
    play(0.3);
    EXPECT_EQ(state(), "running");
    EXPECT_EQ(engine->outputDevice()->uid, "hdmi");
    EXPECT_EQ(hardware.aggregates().front().mainDeviceUID, "hdmi");
    EXPECT_NEAR(level("hdmi"), 0.25, 1e-3);
}

TEST_F(EngineRestartTest, WithTheLastDeviceUnpluggedItSaysSo) {
    start();
    hardware.removeDevice("hdmi");
    hardware.removeDevice("speakers");
    play(0.3);
    EXPECT_EQ(state(), "No output device selected. Choose your speakers as output.");
    expectNothingLeft();
}

} // namespace
} // namespace quorbel::testing
