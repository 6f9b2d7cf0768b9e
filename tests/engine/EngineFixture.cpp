#include "engine/EngineFixture.h"

#include <cmath>
#include <numbers>

namespace quorbel::testing {

simulated::Sound sine(double hertz, double amplitude) {
    return [=](double seconds, std::uint32_t) {
        return static_cast<float>(amplitude * std::sin(2.0 * std::numbers::pi * hertz * seconds));
    };
}

simulated::Sound countedFrames() {
    return [](double seconds, std::uint32_t channel) {
        const auto value = static_cast<float>(std::lround(seconds * 48000.0) + 1) * countedStep;
        return channel == 0 ? value : -value;
    };
}

EngineTest::EngineTest() {
    hardware.addDevice({.uid = "speakers", .name = "Speakers"});
    hardware.addDevice({.uid = "hdmi", .name = "HDMI"});
    devices.refresh();
    makeEngine([](AudioUnitRegistry &) {});
}

void EngineTest::makeEngine(const AudioEngine::UnitRegistration &registerUnits) {
    engine = std::make_unique<AudioEngine>(hardware, devices, clock, EQBand::defaultBands(),
                                           registerUnits, clockedSerialQueues(clock));
    choose("speakers");
}

void EngineTest::start() {
    engine->start();
    clock.runPending();
}

void EngineTest::settle() {
    play(0.05);
    for (const AudioDevice &device : devices.outputDevices())
        (void)heard(device.uid);
}

double EngineTest::toneOn(const std::string &uid) {
    (void)heard(uid);
    play(0.1);
    return SineFit::of(heard(uid).left, 1000.0, 48000.0).amplitude;
}

std::string EngineTest::state() const {
    switch (engine->state().kind) {
    case EngineLifecycle::State::Kind::error:
        return engine->state().message;
    case EngineLifecycle::State::Kind::stopped:
        return "stopped";
    case EngineLifecycle::State::Kind::running:
        return "running";
    }
    return "?";
}

void EngineTest::expectNothingLeft() {
    EXPECT_TRUE(hardware.taps().empty());
    EXPECT_TRUE(hardware.aggregates().empty());
    EXPECT_FALSE(hardware.isCapturing());
    EXPECT_FALSE(hardware.isPlaying());
    EXPECT_FALSE(hardware.isListenedTo());
    EXPECT_FALSE(devices.isObservingHardware());
    EXPECT_FALSE(devices.onHardwareChange);
    EXPECT_FALSE(devices.onHardwareLost);
}

void EngineTest::setBand(std::size_t index, float frequency, float gainDB) {
    auto bands = engine->eq().bands();
    bands.at(index) = {.id = bands.at(index).id,
                       .frequency = frequency,
                       .gainDB = gainDB,
                       .q = 1.0F,
                       .filterType = EQBand::FilterType::parametric,
                       .bypassed = false};
    engine->eq().setBands(bands);
}

} // namespace quorbel::testing
