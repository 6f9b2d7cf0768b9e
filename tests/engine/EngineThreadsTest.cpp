// The engine with capture and playback on separate threads at full speed: for the thread sanitizer,
// and to check that no call is under way after a stop.

#include "engine/EngineFixture.h"
#include "support/RealtimeGuard.h"

#include <atomic>
#include <optional>
#include <thread>

namespace quorbel::testing {
namespace {

class CycleCount final : public simulated::CallbackWatch {
  public:
    void enter() noexcept override { ++inside_; }
    void leave() noexcept override {
        --inside_;
        ++cycles_;
    }

    /// Waits for this many more cycles.
    void wait(int cycles) const {
        const int until = cycles_ + cycles;
        while (cycles_ < until)
            std::this_thread::yield();
    }
    [[nodiscard]] int inside() const { return inside_; }

  private:
    std::atomic<int> inside_{0};
    std::atomic<int> cycles_{0};
};

TEST(EngineThreads, ControlsMoveAndHardwareChangesWhileItRuns) {
    const CapturedLog log;
    CycleCount count;
    ManualClock clock;
    SimulatedHardware hardware(clock, SimulatedHardware::Pace::threads);
    hardware.addDevice({.uid = "speakers", .blockFrames = {512, 77}});
    hardware.addDevice({.uid = "hdmi", .sampleRate = 44100.0, .blockFrames = {256}});
    hardware.watchCallbacks(count);
    hardware.play(sine(1000.0));
    DeviceManager devices(hardware, clock);
    AudioEngine engine(hardware, devices, clock, EQBand::defaultBands());

    for (int round = 0; round < 20; ++round) {
        // Every other round captures and plays on different devices, hence on two threads.
        engine.setOutputDevice(devices.outputDevice(round % 2 == 0 ? "hdmi" : "speakers"));
        engine.start();
        clock.runPending();
        ASSERT_EQ(engine.state(), EngineLifecycle::State::running()) << engine.state().message;
        count.wait(5);

        auto bands = engine.eq().bands();
        bands[static_cast<std::size_t>(round % 10)].gainDB = static_cast<float>(round % 7) - 3.0F;
        engine.eq().setBands(bands);
        SpatialConfig spatial = engine.spatial();
        spatial.toneBassDB = static_cast<float>(round % 5);
        spatial.bassEnabled = spatial.bassAdaptiveEnabled = round % 3 == 1;
        spatial.reverbEnabled = round % 2 == 0;
        spatial.reverbPreset = SpatialConfig::allReverbPresets[static_cast<std::size_t>(round % 7)];
        engine.setDisplayed(round % 2 == 0);
        engine.setSpatial(spatial);
        MixerConfig mixer = engine.mixer();
        mixer.limiterThresholdDB = -static_cast<float>(round % 3);
        engine.setMixer(mixer);
        clock.advance(1.05); // read-outs and diagnostics during cycles
        count.wait(5);

        if (round % 4 == 1)
            hardware.setDefaultOutput("hdmi");
        if (round % 4 == 2)
            hardware.setSampleRate("speakers", round % 8 == 2 ? 96000.0 : 48000.0);
        if (round % 4 == 3)
            hardware.setDefaultOutput("speakers");
        clock.advance(0.2);
        count.wait(5);
        ASSERT_EQ(engine.state(), EngineLifecycle::State::running()) << engine.state().message;

        if (round % 3 != 0) { // otherwise the next start finds it running
            engine.stop();
            EXPECT_EQ(count.inside(), 0);
            EXPECT_FALSE(hardware.isCapturing());
            EXPECT_FALSE(hardware.isPlaying());
        }
    }
}

/// Counts forbidden operations of the callbacks on an audio thread.
class Violations final : public simulated::CallbackWatch {
  public:
    void enter() noexcept override { guard_.emplace(); }
    void leave() noexcept override {
        const RealtimeViolations here = guard_->violations();
        guard_.reset();
        total.allocations += here.allocations;
        total.frees += here.frees;
        total.foreignLocks += here.foreignLocks;
        ++callbacks;
    }

    RealtimeViolations total;
    int callbacks = 0;

  private:
    std::optional<RealtimeGuard> guard_;
};

class EngineRealtimeTest : public EngineTest {};

TEST_F(EngineRealtimeTest, CallbacksAllocateNothingAndTakeNoForeignLock) {
    Violations violations;
    engine = std::make_unique<AudioEngine>(hardware, devices, clock, EQBand::defaultBands());
    engine->setComparable(true);
    choose("speakers");
    hardware.watchCallbacks(violations);
    hardware.play(sine(1000.0));
    hardware.setBlockFrames("speakers", {512, 1, 1023, 7, 4096});
    for (const double sampleRate : {48000.0, 44100.0}) {
        hardware.setSampleRate("speakers", sampleRate);
        start();
        play(0.3);
        for (int step = 0; step < 20; ++step) { // all stages on, all settings changing
            const auto turn = static_cast<float>(step % 5);
            setBand(5, 1000.0F, turn - 3.0F);
            engine->eq().setGlobalGainDB(-turn);
            engine->setSpatial({.widenerEnabled = true,
                                .widthPercent = 100.0F + turn,
                                .xtcEnabled = true,
                                .xtcAmount = 50.0F + turn,
                                .reverbEnabled = step % 7 != 0,
                                .bassEnabled = true,
                                .bassDrive = 3.0F + turn,
                                .bassAdaptiveEnabled = true,
                                .voiceEnabled = true,
                                .voiceAmount = 90.0F + turn,
                                .voiceAdaptiveEnabled = true,
                                .toneBassDB = turn});
            engine->setMixer({.saturationEnabled = true,
                              .saturationDrive = 30.0F + turn,
                              .crossfeedEnabled = true,
                              .crossfeedAmount = 50.0F + turn,
                              .limiterThresholdDB = -turn,
                              .autoGainEnabled = true,
                              .manualLoudnessEnabled = true,
                              .manualLoudnessDB = turn});
            play(0.05);
        }
        hardware.setSampleRate("speakers", 96000.0);
        play(0.3);
        for (const float frame : heard("speakers").left)
            ASSERT_TRUE(std::isfinite(frame));
        stop();
    }
    EXPECT_GT(violations.callbacks, 200);
    EXPECT_EQ(violations.total, RealtimeViolations{});
    engine.reset();
}

} // namespace
} // namespace quorbel::testing
