#pragma once

#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "engine/CapturedLog.h"
#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"
#include "support/SineFit.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace quorbel::testing {

/// A sine of `amplitude` at `hertz` on both channels.
[[nodiscard]] simulated::Sound sine(double hertz, double amplitude = 0.25);

/// Numbers the frames of a device at 48 kHz: frame n is (n + 1) / 2^20 on the left, its negative on
/// the right. All values of the first twenty seconds are distinct and exact in 32 bits.
[[nodiscard]] simulated::Sound countedFrames();
inline constexpr float countedStep = 1.0F / (1 << 20);

/// An engine on simulated hardware: two devices at 48 kHz with cycles of 512 frames, "speakers"
/// (the default and chosen) and "hdmi". No limiter or other unit exists unless a test registers
/// one.
class EngineTest : public ::testing::Test {
  protected:
    using Operation = SimulatedHardware::Operation;

    EngineTest();

    /// Makes a new engine that knows these units.
    void makeEngine(const AudioEngine::UnitRegistration &registerUnits);

    void choose(const std::string &uid) { engine->setOutputDevice(devices.outputDevice(uid)); }
    /// Starts and completes the start without advancing the clock.
    void start();
    void stop() { engine->stop(); }
    void play(double seconds) { clock.advance(seconds); }
    /// Plays out the fade after a start or stop and discards its sound.
    void settle();
    /// Amplitude of a 1 kHz tone on a device over the next 0.1 s.
    [[nodiscard]] double toneOn(const std::string &uid);
    /// "running", "stopped" or the error's text.
    [[nodiscard]] std::string state() const;
    /// Sound of a device since the last call.
    [[nodiscard]] simulated::Recording heard(const std::string &uid) {
        return hardware.takeRecording(uid);
    }
    /// Expects that none of our objects remain on the machine.
    void expectNothingLeft();

    void setBand(std::size_t index, float frequency, float gainDB);

    CapturedLog log;
    ManualClock clock;
    SimulatedHardware hardware{clock};
    DeviceManager devices{hardware, clock};
    std::unique_ptr<AudioEngine> engine;
};

} // namespace quorbel::testing
