// The engine's work while the hardware runs and no application plays.

#include "effects/EffectComponents.h"
#include "engine/EngineFixture.h"

#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

namespace quorbel::testing {
namespace {

/// Forwards to another clock and counts the callbacks of its own timers.
class CountingClock final : public Clock {
  public:
    explicit CountingClock(Clock &clock) : clock_(clock) {}
    [[nodiscard]] double now() const override { return clock_.now(); }
    TimerID after(double seconds, Task task) override {
        return clock_.after(seconds, counted(std::move(task)));
    }
    TimerID every(double seconds, Task task) override {
        return clock_.every(seconds, counted(std::move(task)));
    }
    void cancel(TimerID timer) override { clock_.cancel(timer); }
    void post(Task task) override { clock_.post(std::move(task)); }

    [[nodiscard]] int takeCount() { return std::exchange(count_, 0); }

  private:
    Task counted(Task task) {
        return [this, task = std::move(task)] {
            ++count_;
            task();
        };
    }

    Clock &clock_;
    int count_ = 0;
};

AudioEngine::UnitRegistration allUnitsOn(Clock &clock) {
    return [&clock](AudioUnitRegistry &units) {
        registerEffectUnits(units, clockedSerialQueues(clock));
    };
}

/// Low enough for the bass tracker, and constantly changing.
simulated::Sound wanderingBass() {
    return [](double seconds, std::uint32_t) {
        return static_cast<float>(
            0.25 * std::sin(2.0 * std::numbers::pi * (80.0 + 3.0 * seconds) * seconds) +
            0.05 * std::sin(seconds) * std::sin(2.0 * std::numbers::pi * 900.0 * seconds));
    };
}

/// Another machine that starts the same sound at the same time.
struct OtherMachine {
    explicit OtherMachine(const simulated::Sound &sound) {
        hardware.addDevice({.uid = "speakers"});
        hardware.play(sound);
        devices.refresh();
        engine.setOutputDevice(devices.outputDevice("speakers"));
        engine.start();
        clock.runPending();
    }

    ManualClock clock;
    SimulatedHardware hardware{clock};
    DeviceManager devices{hardware, clock};
    AudioEngine engine{hardware,
                       devices,
                       clock,
                       EQBand::defaultBands(),
                       allUnitsOn(clock),
                       clockedSerialQueues(clock)};
};

class EngineIdleTest : public EngineTest {
  protected:
    EngineIdleTest() {
        engine = std::make_unique<AudioEngine>(hardware, devices, counting, EQBand::defaultBands(),
                                               allUnitsOn(counting), clockedSerialQueues(counting));
        choose("speakers");
    }
    ~EngineIdleTest() override { engine.reset(); } // it uses the clock

    void playFromTheStart(const simulated::Sound &sound) {
        hardware.play(sound);
        start();
    }

    CountingClock counting{clock};
};

TEST_F(EngineIdleTest, EverythingRestsInSilenceAndResumesWithSound) {
    playFromTheStart(sine(60.0));
    play(1.0);
    const std::int64_t ticksBefore = engine->spectrumAnalyzer().ticuri();
    EXPECT_GT(ticksBefore, 25);
    hardware.setSuspended(true);
    play(20.0);
    (void)counting.takeCount();
    play(60.0);
    EXPECT_EQ(counting.takeCount(), 0);
    EXPECT_EQ(engine->spectrumAnalyzer().bands(), SpectrumAnalyzer::Levels{});
    EXPECT_EQ(engine->spectrumAnalyzer().benziLente(), SpectrumAnalyzer::Levels{});

    const float trackedBefore = engine->bassTrackedFrequency();
    const std::int64_t ticksAtRest = engine->spectrumAnalyzer().ticuri();
    hardware.play(sine(140.0, 0.9));
    hardware.setSuspended(false);
    play(1.0);
    EXPECT_GT(engine->bassTrackedFrequency(), trackedBefore + 20.0F);
    EXPECT_GT(engine->spectrumAnalyzer().ticuri(), ticksAtRest + 25);
}

TEST_F(EngineIdleTest, HiddenValuesWakeRarelyAndAreTheSameOnceShown) {
    OtherMachine seen(wanderingBass());
    playFromTheStart(wanderingBass());
    for (SimulatedHardware *machine : {&hardware, &seen.hardware})
        machine->setBlockFrames("speakers", {480}); // a whole number of blocks per estimate
    const auto playBoth = [&](double seconds) {
        play(seconds);
        seen.clock.advance(seconds);
    };
    const auto expectSame = [&] {
        seen.engine.setDisplayed(false); // publishes again once displayed
        seen.engine.setDisplayed(true);
        engine->setDisplayed(true);
        EXPECT_EQ(engine->bassTrackedFrequency(), seen.engine.bassTrackedFrequency());
        EXPECT_EQ(engine->voiceConfidence(), seen.engine.voiceConfidence());
    };
    playBoth(1.003);
    engine->setDisplayed(false);
    const std::int64_t ticks = engine->spectrumAnalyzer().ticuri();
    const float tracked = engine->bassTrackedFrequency();
    (void)counting.takeCount();
    playBoth(10.0);
    EXPECT_LE(counting.takeCount(), 2 * 20 + 10) << "the analyses of the sound and the seconds";
    EXPECT_EQ(engine->spectrumAnalyzer().ticuri(), ticks);
    expectSame();
    EXPECT_NE(engine->bassTrackedFrequency(), tracked);
    playBoth(1.0);
    EXPECT_GT(engine->spectrumAnalyzer().ticuri(), ticks + 25);

    // Estimates that shape the sound return to their schedule, hidden or not.
    engine->setDisplayed(false);
    playBoth(4.31);
    SpatialConfig adaptive;
    adaptive.bassEnabled = adaptive.bassAdaptiveEnabled = true;
    adaptive.voiceEnabled = adaptive.voiceAdaptiveEnabled = true;
    engine->setSpatial(adaptive);
    seen.engine.setSpatial(adaptive);
    (void)heard("speakers");
    (void)seen.hardware.takeRecording("speakers");
    playBoth(1.0);
    EXPECT_EQ(heard("speakers").left, seen.hardware.takeRecording("speakers").left);
    expectSame();

    // The engine also becomes idle while hidden.
    engine->setDisplayed(false);
    engine->setSpatial({});
    seen.engine.setSpatial({});
    playBoth(1.33);
    hardware.setSuspended(true);
    seen.hardware.setSuspended(true);
    playBoth(20.0);
    (void)counting.takeCount();
    playBoth(20.0);
    EXPECT_EQ(counting.takeCount(), 0);
    expectSame();
}

} // namespace
} // namespace quorbel::testing
