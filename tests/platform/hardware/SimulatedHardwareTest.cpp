#include "platform/hardware/simulated/SimulatedHardware.h"

#include "platform/hardware/AudioHardwareContract.h"
#include "platform/threads/ManualClock.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <numbers>
#include <numeric>

namespace quorbel::testing {
namespace {

using Operation = SimulatedHardware::Operation;

class SimulatedWorld final : public HardwareWorld {
  public:
    SimulatedWorld() {
        hardware_.addDevice({.uid = "speakers", .name = "Speakers", .blockFrames = {512, 100, 1}});
        hardware_.addDevice({.uid = "hdmi", .name = "HDMI"});
    }

    AudioHardware &hardware() override { return hardware_; }
    void playTone() override {
        hardware_.play([](double seconds, std::uint32_t) {
            return static_cast<float>(0.25 * std::sin(2.0 * std::numbers::pi * 1000.0 * seconds));
        });
    }
    float listen(const std::string &uid) override {
        (void)hardware_.takeRecording(uid);
        letCyclesPass();
        float peak = 0.0F;
        for (const float sample : hardware_.takeRecording(uid).left)
            peak = std::max(peak, std::abs(sample));
        return peak;
    }
    void plugIn(const std::string &uid) override { hardware_.addDevice({.uid = uid}); }
    void unplug(const std::string &uid) override { hardware_.removeDevice(uid); }
    void setDefaultOutput(const std::string &uid) override { hardware_.setDefaultOutput(uid); }
    void plugInCard(const std::string &uid) override {
        hardware_.addDevice({.uid = uid, .identity = {.card = "card", .isAwaited = true}});
    }
    void setRoute(const std::string &uid, const std::string &route) override {
        hardware_.setIdentity(uid, {.card = "card", .route = route});
    }
    void changeVolume(const std::string &) override {} // its devices have none
    void loseServer() override { hardware_.loseConnection(-EPIPE); }
    bool waitUntil(const std::function<bool()> &condition) override {
        for (int step = 0; step < 1000 && !condition(); ++step)
            clock_.advance(0.01);
        return condition();
    }
    void letCyclesPass() override { clock_.advance(0.2); }

  private:
    ManualClock clock_;
    SimulatedHardware hardware_{clock_};
};

INSTANTIATE_TEST_SUITE_P(Simulated, AudioHardwareContract,
                         ::testing::Values([]() -> std::unique_ptr<HardwareWorld> {
                             return std::make_unique<SimulatedWorld>();
                         }));

/// Notes the length and rate of every cycle.
class Cycles final : public RenderClient {
  public:
    void renderFormatChanged(const StreamFormat &format) override { rate = format.sampleRate; }
    void renderCycle(const AudioBufferList &, std::uint32_t frames) noexcept override {
        lengths.push_back(frames);
    }
    double rate = 0.0;
    std::vector<std::uint32_t> lengths;
};

TEST(SimulatedHardware, CyclesFollowTheScriptInItsTime) {
    ManualClock clock;
    SimulatedHardware hardware(clock);
    const auto id =
        hardware.addDevice({.uid = "odd", .sampleRate = 44100.0, .blockFrames = {441, 1, 440}});
    const auto output = hardware.makeOutput();
    ASSERT_EQ(output->setDevice(id), statusOK);
    Cycles cycles;
    ASSERT_EQ(output->start(cycles), statusOK);
    clock.advance(1.0);
    EXPECT_EQ(std::accumulate(cycles.lengths.begin(), cycles.lengths.end(), 0U), 44100U);
    EXPECT_EQ(cycles.lengths[3], 441U);

    cycles.lengths.clear();
    hardware.setSampleRate("odd", 96000.0);
    EXPECT_EQ(cycles.rate, 96000.0);
    hardware.setBlockFrames("odd", {960});
    clock.advance(1.0);
    EXPECT_EQ(cycles.lengths, std::vector<std::uint32_t>(100, 960));

    // A change elsewhere on the machine does not move the cycles in time.
    cycles.lengths.clear();
    clock.advance(0.009);
    hardware.addDevice({.uid = "other"});
    clock.advance(0.001);
    EXPECT_EQ(cycles.lengths.size(), 1U);
}

TEST(SimulatedHardware, NotesCallsAndFailsThemOnDemand) {
    ManualClock clock;
    SimulatedHardware hardware(clock);
    hardware.operations().fail(Operation::createProcessTap, -13);
    AudioObjectID tap = 0;
    EXPECT_EQ(hardware.createProcessTap({}, tap), -13);
    hardware.operations().fail(Operation::createProcessTap, 0);
    EXPECT_EQ(hardware.createProcessTap({}, tap), 0);
    EXPECT_EQ(tap, 0U) << "success in name only";
    hardware.operations().repair(Operation::createProcessTap);
    EXPECT_EQ(hardware.createProcessTap({}, tap), 0);
    EXPECT_NE(tap, 0U);
    hardware.destroyProcessTap(tap);
    EXPECT_THAT(hardware.operations().calls(),
                ::testing::ElementsAre(Operation::createProcessTap, Operation::createProcessTap,
                                       Operation::createProcessTap, Operation::destroyProcessTap));
    EXPECT_EQ(name(Operation::destroyOutput), "destroyOutput");
}

TEST(SimulatedHardware, OnThreadsCyclesComeUntilTheStopReturns) {
    ManualClock clock;
    SimulatedHardware hardware(clock, SimulatedHardware::Pace::threads);
    const auto id = hardware.addDevice({.uid = "fast"});
    class Count final : public RenderClient {
      public:
        void renderFormatChanged(const StreamFormat &) override {}
        void renderCycle(const AudioBufferList &, std::uint32_t) noexcept override { ++cycles; }
        std::atomic<int> cycles{0};
    };
    Count count;
    const auto output = hardware.makeOutput();
    ASSERT_EQ(output->setDevice(id), statusOK);
    for (int round = 0; round < 50; ++round) {
        const int before = count.cycles;
        ASSERT_EQ(output->start(count), statusOK);
        while (count.cycles < before + 10)
            std::this_thread::yield();
        output->stop();
        const int stopped = count.cycles;
        std::this_thread::yield();
        ASSERT_EQ(count.cycles, stopped);
    }
}

} // namespace
} // namespace quorbel::testing
