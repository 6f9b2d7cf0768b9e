// Each call of the hardware interface fails, one at a time.

#include "engine/EngineFixture.h"

#include <cerrno>
#include <ostream>
#include <string>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAreArray;
using Operation = SimulatedHardware::Operation;

constexpr const char *captureRefused = "Couldn't start system audio capture (OSStatus -1). If you "
                                       "denied the permission prompt, enable "
                                       "Quorbel under System Settings → Privacy & Security → "
                                       "Screen & System Audio Recording, then try "
                                       "again.";
constexpr const char *invalidFormat =
    "System audio capture failed: the audio tap reported an invalid stream format.";

struct Failure {
    const char *name;
    Operation operation;
    Status status;
    std::string expectedState;
    std::vector<Operation> teardown; ///< what follows the failing call

    friend std::ostream &operator<<(std::ostream &out, const Failure &failure) {
        return out << failure.name;
    }
};

const std::vector<Operation> dropTap{Operation::destroyProcessTap};
const std::vector<Operation> dropAggregate{Operation::destroyAggregateDevice,
                                           Operation::destroyProcessTap};
const std::vector<Operation> dropCapture{Operation::stopDevice, Operation::destroyIOProc,
                                         Operation::destroyAggregateDevice,
                                         Operation::destroyProcessTap};

const Failure failures[]{
    {"setDevice", Operation::setDevice, -1, "Failed to set output device (OSStatus -1).", {}},
    {"processObject",
     Operation::processObject,
     -1,
     "System audio capture failed: couldn't identify own audio process (OSStatus -1).",
     {}},
    {"processObjectWithoutId",
     Operation::processObject,
     0,
     "System audio capture failed: couldn't identify own audio process (OSStatus 0).",
     {}},
    {"createProcessTap",
     Operation::createProcessTap,
     -1,
     "System audio capture failed: couldn't create system audio tap (OSStatus -1).",
     {}},
    {"createProcessTapWithoutId",
     Operation::createProcessTap,
     0,
     "System audio capture failed: couldn't create system audio tap (OSStatus 0).",
     {}},
    {"tapFormat", Operation::tapFormat, -1, invalidFormat, dropTap},
    {"tapFormatEmpty", Operation::tapFormat, 0, invalidFormat, dropTap},
    {"defaultOutputDevice", Operation::defaultOutputDevice, -1,
     "System audio capture failed: couldn't find default output device (OSStatus -1).", dropTap},
    {"deviceUID", Operation::deviceUID, -1,
     "System audio capture failed: couldn't read default output device UID (OSStatus -61).",
     dropTap},
    {"createAggregateDevice", Operation::createAggregateDevice, -1,
     "System audio capture failed: couldn't create capture aggregate device (OSStatus -1).",
     dropTap},
    {"createAggregateDeviceWithoutId", Operation::createAggregateDevice, 0,
     "System audio capture failed: couldn't create capture aggregate device (OSStatus 0).",
     dropTap},
    {"createIOProc", Operation::createIOProc, -1,
     "System audio capture failed: couldn't create capture IO proc (OSStatus -1).", dropAggregate},
    {"createIOProcWithoutId", Operation::createIOProc, 0,
     "System audio capture failed: couldn't create capture IO proc (OSStatus 0).", dropAggregate},
    {"startDevice", Operation::startDevice, -1, captureRefused, dropCapture},
    {"startOutput", Operation::startOutput, -1,
     "Couldn't start playback on the output device (OSStatus -1).", dropCapture},
};

class EngineFailureTest : public EngineTest, public ::testing::WithParamInterface<Failure> {};

TEST_P(EngineFailureTest, IsShownTornDownAndForgotten) {
    const Failure &failure = GetParam();
    hardware.play(sine(1000.0));
    hardware.operations().fail(failure.operation, failure.status);
    (void)actions();
    start();
    EXPECT_EQ(state(), failure.expectedState);
    auto calls = actions();
    ASSERT_GE(calls.size(), failure.teardown.size());
    EXPECT_THAT(std::vector(calls.end() - static_cast<std::ptrdiff_t>(failure.teardown.size()),
                            calls.end()),
                ElementsAreArray(failure.teardown));
    expectNothingLeft();
    EXPECT_NEAR(toneOn("speakers"), 0.25, 1e-4) << "normal sound meanwhile";

    start();
    EXPECT_EQ(state(), failure.expectedState) << "again, and still no harm";
    hardware.operations().repair(failure.operation);
    start();
    EXPECT_EQ(state(), "running");
    settle();
    EXPECT_NEAR(toneOn("speakers"), 0.25, 1e-4);
    stop();
    expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(Start, EngineFailureTest, ::testing::ValuesIn(failures),
                         [](const auto &failure) { return std::string(failure.param.name); });

class EngineWithoutTest : public EngineTest {};

TEST_F(EngineWithoutTest, AnOutputChosen) {
    engine->setOutputDevice(std::nullopt);
    int announced = 0;
    QObject::connect(engine.get(), &AudioEngine::stateChanged, [&] { ++announced; });
    for (int starts = 1; starts <= 2; ++starts) {
        start();
        EXPECT_EQ(state(), "No output device selected. Choose your speakers as output.");
        EXPECT_EQ(announced, starts) << "whoever waits for the end of a start hears of each";
    }
    expectNothingLeft();
    choose("hdmi");
    EXPECT_EQ(state(), "stopped") << "the error goes with its cause";
}

TEST_F(EngineWithoutTest, TheChosenOutputListed) {
    choose("hdmi");
    hardware.removeDevice("hdmi");
    hardware.removeDevice("speakers");
    devices.refresh();
    start();
    EXPECT_EQ(state(), "Audio device not found.");
    expectNothingLeft();
}

TEST_F(EngineWithoutTest, AnOutputUnit) {
    hardware.operations().fail(Operation::makeOutput, 0);
    makeEngine([](AudioUnitRegistry &) {});
    start();
    EXPECT_EQ(state(), "Couldn't access the audio unit for output node.");
    expectNothingLeft();
}

// What fails without being needed does not keep the sound from playing.
TEST_F(EngineWithoutTest, WhatItCanDoWithout) {
    hardware.play(sine(1000.0));
    hardware.operations().fail(Operation::nominalSampleRate, -1);
    hardware.operations().fail(Operation::addListener, -1);
    (void)log.take();
    start();
    EXPECT_EQ(state(), "running");
    const auto lines = log.take();
    EXPECT_EQ(lines[1], "[SystemAudioTap] rate: agregat necitită | tap declarat 48000 Hz | sursa "
                        "convertorului 48000 Hz | lanț 48000 Hz → copiere");
    EXPECT_EQ(lines[3], "[DeviceManager] nu am putut asculta dev#: OSStatus -1");
    settle();
    EXPECT_NEAR(toneOn("speakers"), 0.25, 1e-4);
}

// Nothing in a teardown may keep the rest of it from happening.
TEST_F(EngineWithoutTest, ATeardownThatWorks) {
    start();
    for (const Operation operation : {Operation::stopDevice, Operation::destroyIOProc,
                                      Operation::destroyAggregateDevice, Operation::removeListener})
        hardware.operations().fail(operation, -1);
    (void)actions();
    stop();
    EXPECT_EQ(state(), "stopped");
    EXPECT_EQ(actions().size(), 8U);
    EXPECT_TRUE(hardware.taps().empty());
    EXPECT_FALSE(hardware.isPlaying());
}

TEST_F(EngineWithoutTest, TheSoundServer) {
    hardware.play(sine(1000.0));
    start();
    play(0.1);
    hardware.loseConnection(-EPIPE);
    play(0.1);
    EXPECT_EQ(state(), "The sound server went away (OSStatus -32).");
    expectNothingLeft();
    EXPECT_TRUE(devices.outputDevices().empty());

    stop();
    start();
    EXPECT_EQ(state(), "Audio device not found.") << "there is no server to start on";
    hardware.restoreConnection();
    play(5.0);
    EXPECT_NE(state(), "running") << "a start that fails at once is not tried again";
}

} // namespace
} // namespace quorbel::testing
