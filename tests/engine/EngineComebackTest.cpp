#include "engine/EngineFixture.h"

#include <algorithm>
#include <cerrno>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Processing restarts by itself after an interruption.
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
};

TEST_F(EngineComebackTest, RestoresItsStateWithTheServer) {
    setBand(5, 1000.0F, -6.0F);
    choose("hdmi");
    play(0.5);
    loseServer();
    EXPECT_EQ(state(), "The sound server went away (OSStatus -32).");
    EXPECT_TRUE(devices.outputDevices().empty());
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
    EXPECT_NEAR(toneOn("hdmi"), 0.25 * std::pow(10.0, -6.0 / 20.0), 1e-3);
    EXPECT_EQ(toneOn("speakers"), 0.0);
    EXPECT_THAT(log.takeWith("procesarea"),
                ElementsAre(HasSubstr("The sound server went away (OSStatus -32)."),
                            HasSubstr("a revenit după 60.")));

    loseServer();
    hardware.restoreConnection();
    play(0.5);
    EXPECT_EQ(engine->upheavals().comebacks, 2) << "again and again";
}

TEST_F(EngineComebackTest, NotAfterAStop) {
    loseServer();
    stop();
    hardware.restoreConnection();
    play(5.0);
    EXPECT_EQ(state(), "stopped");
    expectNothingLeft();
    hardware.removeDevice("speakers"); // returns under another id while nothing runs
    hardware.addDevice({.uid = "speakers"});
    start();
    EXPECT_EQ(state(), "running");
    EXPECT_EQ(engine->upheavals().comebacks, 0) << "the user did it";
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
    EXPECT_NEAR(toneOn("hdmi"), 0.25, 1e-3);
}

TEST_F(EngineComebackTest, AStartThatKeepsFailingIsTriedLessAndLess) {
    const auto &calls = hardware.operations().calls();
    hardware.operations().fail(Operation::createAggregateDevice, -12);
    hardware.setDefaultOutput("hdmi");
    clock.runPending();
    EXPECT_THAT(state(), HasSubstr("couldn't create capture aggregate device (OSStatus -12)."));
    expectNothingLeft();
    const auto before = std::ranges::count(calls, Operation::createProcessTap);
    play(20.0);
    const auto tries = std::ranges::count(calls, Operation::createProcessTap) - before;
    EXPECT_LT(tries, 14);
    EXPECT_GT(tries, 8);
    EXPECT_NE(state(), "running");
    expectNothingLeft();
    hardware.operations().repair(Operation::createAggregateDevice);
    play(2.1);
    EXPECT_EQ(state(), "running");
}

} // namespace
} // namespace quorbel::testing
