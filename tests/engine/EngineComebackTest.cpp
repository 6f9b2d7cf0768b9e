#include "engine/EngineFixture.h"

#include <algorithm>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Processing that was taken away in the middle comes back by itself.
class EngineComebackTest : public EngineTest {
  protected:
    EngineComebackTest() {
        hardware.play(sine(1000.0));
        start();
        play(0.1);
    }

    void loseServer() {
        hardware.loseConnection(-EPIPE);
        clock.runPending();
    }

    [[nodiscard]] double level(const std::string &uid) {
        (void)heard(uid);
        play(0.2);
        return fitSine(heard(uid).left, 1000.0, 48000.0).amplitude;
    }
};

TEST_F(EngineComebackTest, WithTheServerInTheStateItWasIn) {
    setBand(5, 1000.0F, -6.0F);
    choose("hdmi");
    play(0.5);
    loseServer();
    EXPECT_EQ(state(), "The sound server went away (OSStatus -32).");
    EXPECT_TRUE(engine->isComingBack());
    play(60.0);
    EXPECT_EQ(state(), "The sound server went away (OSStatus -32).") << "for as long as it takes";
    expectNothingLeft();

    hardware.restoreConnection();
    play(0.5);
    EXPECT_EQ(state(), "running");
    EXPECT_FALSE(engine->isComingBack());
    EXPECT_EQ(engine->upheavals().comebacks, 1);
    EXPECT_EQ(engine->outputDevice()->uid, "hdmi") << "found under its new id";
    EXPECT_NEAR(level("hdmi"), 0.25 * std::pow(10.0, -6.0 / 20.0), 1e-3);
    EXPECT_EQ(level("speakers"), 0.0);
    EXPECT_THAT(log.takeWith("procesarea"),
                ElementsAre(HasSubstr("The sound server went away (OSStatus -32)."),
                            HasSubstr("a revenit după 60.")));

    loseServer();
    hardware.restoreConnection();
    play(0.5);
    EXPECT_EQ(state(), "running") << "again and again";
    EXPECT_EQ(engine->upheavals().comebacks, 2);
}

TEST_F(EngineComebackTest, NotAfterAStop) {
    loseServer();
    stop();
    hardware.restoreConnection();
    play(5.0);
    EXPECT_EQ(state(), "stopped");
    expectNothingLeft();
    start();
    EXPECT_EQ(state(), "running");
    EXPECT_EQ(engine->upheavals().comebacks, 0) << "the user did it";
}

TEST_F(EngineComebackTest, ADeviceReplacedWhileStoppedIsFoundByTheNextStart) {
    stop();
    hardware.removeDevice("speakers");
    hardware.addDevice({.uid = "speakers"});
    start();
    EXPECT_EQ(state(), "running");
}

TEST_F(EngineComebackTest, AStartByHandThatComesTooEarlyIsNoEnd) {
    loseServer();
    start();
    EXPECT_TRUE(engine->isComingBack());
    hardware.restoreConnection();
    play(0.5);
    EXPECT_EQ(state(), "running");
}

TEST_F(EngineComebackTest, AStartByHandDoesNotWaitForTheNextLook) {
    loseServer();
    hardware.restoreConnection();
    devices.refresh();
    start();
    EXPECT_EQ(state(), "running");
    EXPECT_FALSE(engine->isComingBack());
}

TEST_F(EngineComebackTest, WaitsAMomentForTheChosenDeviceThenPlaysOnAnother) {
    choose("hdmi");
    play(0.5);
    loseServer();
    hardware.removeDevice("hdmi");
    hardware.restoreConnection();
    play(0.9);
    EXPECT_NE(state(), "running") << "devices of a fresh server come one by one";
    play(1.0);
    EXPECT_EQ(state(), "running");
    EXPECT_EQ(engine->outputDevice()->uid, "speakers");

    hardware.addDevice({.uid = "hdmi"});
    play(0.5);
    EXPECT_EQ(engine->outputDevice()->uid, "hdmi") << "it is still the choice";
    EXPECT_NEAR(level("hdmi"), 0.25, 1e-3);
}

TEST_F(EngineComebackTest, WhenADeviceIsThereAgain) {
    hardware.removeDevice("hdmi");
    hardware.removeDevice("speakers");
    play(3.0);
    EXPECT_EQ(state(), "No output device selected. Choose your speakers as output.");
    EXPECT_TRUE(engine->isComingBack());
    hardware.addDevice({.uid = "speakers"});
    play(0.5);
    EXPECT_EQ(state(), "running");
    EXPECT_NEAR(level("speakers"), 0.25, 1e-3);
}

TEST_F(EngineComebackTest, AStartThatKeepsFailingIsTriedLessAndLess) {
    hardware.operations().fail(Operation::createAggregateDevice, -12);
    hardware.setDefaultOutput("hdmi");
    clock.runPending();
    (void)actions();
    play(20.0);
    EXPECT_NE(state(), "running");
    const auto tried = actions();
    EXPECT_LT(std::ranges::count(tried, Operation::createProcessTap), 14);
    EXPECT_GT(std::ranges::count(tried, Operation::createProcessTap), 8);
    expectNothingLeft();
    hardware.operations().repair(Operation::createAggregateDevice);
    play(2.1);
    EXPECT_EQ(state(), "running");
}

} // namespace
} // namespace quorbel::testing
