// What the engine does by itself while the hardware runs and no application plays.

#include "effects/EffectComponents.h"
#include "engine/EngineFixture.h"

#include <memory>
#include <utility>

namespace quorbel::testing {
namespace {

/// Counts what runs on another clock by the timers that are set here.
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

class EngineIdleTest : public EngineTest {
  protected:
    EngineIdleTest() {
        engine = std::make_unique<AudioEngine>(
            hardware, devices, counting, EQBand::defaultBands(),
            [this](AudioUnitRegistry &units) {
                registerEffectUnits(units, clockedSerialQueues(counting));
            },
            clockedSerialQueues(counting));
        choose("speakers");
        hardware.play(sine(60.0));
        start();
    }
    ~EngineIdleTest() override { engine.reset(); } // it uses the clock

    CountingClock counting{clock};
};

TEST_F(EngineIdleTest, WithoutSoundEverythingComesToRestAndGoesOnWithIt) {
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

TEST_F(EngineIdleTest, WhatRestsStandsWhereEndlessTicksWouldHaveLeftIt) {
    // The second machine has no cycles either, but does not say so.
    ManualClock otherClock;
    SimulatedHardware other(otherClock);
    other.addDevice({.uid = "speakers"});
    other.play(sine(60.0));
    DeviceManager otherDevices(other, otherClock);
    AudioEngine endless(
        other, otherDevices, otherClock, EQBand::defaultBands(),
        [&](AudioUnitRegistry &units) {
            registerEffectUnits(units, clockedSerialQueues(otherClock));
        },
        clockedSerialQueues(otherClock));
    otherDevices.refresh();
    endless.setOutputDevice(otherDevices.outputDevice("speakers"));
    endless.start();
    otherClock.runPending();

    play(0.5);
    otherClock.advance(0.5);
    const float tracked = engine->bassTrackedFrequency();
    ASSERT_EQ(tracked, endless.bassTrackedFrequency());
    hardware.setSuspended(true);
    other.setAsleep(true);
    play(30.0);
    otherClock.advance(30.0);
    EXPECT_NE(engine->bassTrackedFrequency(), tracked);
    EXPECT_EQ(engine->bassTrackedFrequency(), endless.bassTrackedFrequency());
    EXPECT_EQ(engine->voiceConfidence(), endless.voiceConfidence());
}

TEST_F(EngineIdleTest, WhatNobodySeesIsNotMeasured) {
    play(1.0);
    engine->setDisplayed(false);
    const std::int64_t ticks = engine->spectrumAnalyzer().ticuri();
    (void)counting.takeCount();
    play(10.0);
    EXPECT_LE(counting.takeCount(), 2 * 200 + 10) << "the analyses of the sound and the seconds";
    EXPECT_EQ(engine->spectrumAnalyzer().ticuri(), ticks);
    const float tracked = engine->bassTrackedFrequency();
    engine->setDisplayed(true);
    EXPECT_NE(engine->bassTrackedFrequency(), tracked);
    play(1.0);
    EXPECT_GT(engine->spectrumAnalyzer().ticuri(), ticks + 25);
}

} // namespace
} // namespace quorbel::testing
