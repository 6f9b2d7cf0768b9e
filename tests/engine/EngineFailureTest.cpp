// Each call of the hardware interface fails, one at a time.

#include "engine/EngineFixture.h"

#include <ostream>
#include <string>

namespace quorbel::testing {
namespace {

using Operation = SimulatedHardware::Operation;

const std::string capture = "System audio capture failed: ";
const std::string invalidFormat = capture + "the audio tap reported an invalid stream format.";
const std::string refused =
    "Couldn't start system audio capture (OSStatus -1). If you denied the permission prompt, "
    "enable Quorbel under System Settings → Privacy & Security → Screen & System Audio Recording, "
    "then try again.";

std::string couldNot(const char *what, int status) {
    return capture + "couldn't " + what + " (OSStatus " + std::to_string(status) + ").";
}

/// A status of 0 means success without an object.
struct Failure {
    const char *name;
    Operation operation;
    Status status;
    std::string expectedState;

    friend std::ostream &operator<<(std::ostream &out, const Failure &failure) {
        return out << failure.name;
    }
};

// clang-format off
const Failure failures[]{
    {"setDevice", Operation::setDevice, -1, "Failed to set output device (OSStatus -1)."},
    {"processObject", Operation::processObject, -1, couldNot("identify own audio process", -1)},
    {"processObjectWithoutId", Operation::processObject, 0, couldNot("identify own audio process", 0)},
    {"createProcessTap", Operation::createProcessTap, -1, couldNot("create system audio tap", -1)},
    {"createProcessTapWithoutId", Operation::createProcessTap, 0, couldNot("create system audio tap", 0)},
    {"tapFormat", Operation::tapFormat, -1, invalidFormat},
    {"tapFormatEmpty", Operation::tapFormat, 0, invalidFormat},
    {"defaultOutputDevice", Operation::defaultOutputDevice, -1, couldNot("find default output device", -1)},
    {"deviceUID", Operation::deviceUID, -1, couldNot("read default output device UID", -61)},
    {"createAggregate", Operation::createAggregateDevice, -1, couldNot("create capture aggregate device", -1)},
    {"createAggregateWithoutId", Operation::createAggregateDevice, 0, couldNot("create capture aggregate device", 0)},
    {"createIOProc", Operation::createIOProc, -1, couldNot("create capture IO proc", -1)},
    {"createIOProcWithoutId", Operation::createIOProc, 0, couldNot("create capture IO proc", 0)},
    {"startDevice", Operation::startDevice, -1, refused},
    {"startOutput", Operation::startOutput, -1, "Couldn't start playback on the output device (OSStatus -1)."},
};
// clang-format on

class EngineFailureTest : public EngineTest, public ::testing::WithParamInterface<Failure> {};

TEST_P(EngineFailureTest, IsShownTornDownAndForgotten) {
    const Failure &failure = GetParam();
    hardware.play(sine(1000.0));
    hardware.operations().fail(failure.operation, failure.status);
    for (int round = 0; round < 2; ++round) {
        start();
        EXPECT_EQ(state(), failure.expectedState);
        expectNothingLeft();
        EXPECT_NEAR(toneOn("speakers"), 0.25, 1e-4) << "normal sound meanwhile";
    }
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
    choose("hdmi");
    EXPECT_EQ(state(), "stopped") << "the error goes with its cause";

    hardware.removeDevice("hdmi");
    hardware.removeDevice("speakers");
    devices.refresh();
    start();
    EXPECT_EQ(state(), "Audio device not found.");
    hardware.addDevice({.uid = "hdmi"});
    play(5.0);
    EXPECT_NE(state(), "running") << "a start that fails at once is not tried again";
}

// Failures of optional calls do not interrupt the sound.
TEST_F(EngineWithoutTest, AReadableRateAndListeners) {
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

// A failing step does not stop the rest of a teardown.
TEST_F(EngineWithoutTest, ATeardownThatWorks) {
    start();
    for (const Operation operation : {Operation::stopDevice, Operation::destroyIOProc,
                                      Operation::destroyAggregateDevice, Operation::removeListener})
        hardware.operations().fail(operation, -1);
    stop();
    EXPECT_EQ(state(), "stopped");
    EXPECT_TRUE(hardware.taps().empty());
    EXPECT_FALSE(hardware.isPlaying());
}

} // namespace
} // namespace quorbel::testing
