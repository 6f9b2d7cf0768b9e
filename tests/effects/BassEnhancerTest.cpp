#include "effects/AnalysingUnitTest.h"
#include "effects/EffectComponents.h"
#include "effects/ModelComparison.h"
#include "effects/units/BassEnhancerUnit.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorbel {
namespace {

class BassModel final : public UnitModel {
  public:
    using UnitModel::UnitModel;

    void process(ModelBlock &block, const Settings &s) override {
        const float hz = s.at(BassEnhancerUnit::crossover);
        const std::array<float, 5> low = section(hz, false);
        const std::array<float, 5> high = section(1.5F * hz, true);
        const double drive = double{s.at(BassEnhancerUnit::drive)};
        const double a = double{s.at(BassEnhancerUnit::amount)} / 100.0;
        for (std::size_t i = 0; i < block.left.size(); ++i) {
            for (const std::size_t channel : {0U, 1U}) {
                double &x = (channel == 0 ? block.left : block.right)[i];
                const double bass = lows_[channel](x, low);
                const double harmonics = highs_[channel](std::tanh(drive * bass) / drive, high);
                x = (x + 1.8 * a * harmonics) / (1.0 + 0.8 * a);
            }
        }
    }

  private:
    [[nodiscard]] std::array<float, 5> section(float hz, bool isHighPass) const {
        const float w = 6.2831853F * hz / sampleRate_;
        const float alpha = std::sin(w) / 1.414F;
        const float a0 = 1.0F + alpha;
        const float edge = isHighPass ? 1.0F + std::cos(w) : 1.0F - std::cos(w);
        const float b1 = isHighPass ? -edge / a0 : edge / a0;
        return {edge / 2.0F / a0, b1, edge / 2.0F / a0, -2.0F * std::cos(w) / a0,
                (1.0F - alpha) / a0};
    }

    std::array<ModelSection, 2> lows_;
    std::array<ModelSection, 2> highs_;
};

using BassEnhancerTest = AnalysingUnitTest<BassEnhancerUnit, bassEnhancerDescription>;

TEST_F(BassEnhancerTest, MatchesTheModel) {
    const auto settings = [](float amount, float drive, float crossover) {
        return Settings{{0, amount}, {1, drive}, {2, crossover}, {3, 0.5F}};
    };
    const std::vector<Settings> schedule{settings(50, 3, 80), settings(100, 8, 150),
                                         settings(0, 3, 80), settings(100, 1, 40),
                                         settings(30, 2.5F, 99)};
    // Direct form I in 32 bits at 40 Hz amplifies its rounding error by up to 1e4.
    expectMatchesModel<BassEnhancerUnit, BassModel>({44'100.0, 48'000.0}, schedule, 6e-5);
}

TEST_F(BassEnhancerTest, TracksThePowersCentreOnTheSamplesOfItsSchedule) {
    double expected = 80.0;
    const int estimates = followSchedule(512, 36'000, 2e-4, [&](const auto &heard) {
        double power = 0.0;
        double moment = 0.0;
        for (std::size_t k = 3; k <= 17; ++k) { // 35 to 199 Hz
            const double p = naivePower(heard, k);
            power += p;
            moment += p * static_cast<double>(k) * 48'000.0 / 4096.0;
        }
        return expected += 0.08 * (std::clamp(moment / power, 40.0, 150.0) - expected);
    });
    EXPECT_EQ(estimates, 13);
}

TEST_F(BassEnhancerTest, HoldsInSilenceAndBeforeTheFirstFullWindow) {
    UnitHarness unit = make();
    playInTime(unit, sine(60.0, 4095));
    clock.advance(1.0);
    EXPECT_EQ(readout(unit), 80.0F) << "fewer than 4096 frames";
    playInTime(unit, sine(60.0, 480'000));
    EXPECT_NEAR(readout(unit), 60.0F, 0.5F);

    playInTime(unit, Stereo(9600));
    const float held = readout(unit);
    playInTime(unit, Stereo(96'000));
    EXPECT_EQ(readout(unit), held);

    ASSERT_EQ(unit.allocate(), statusOK);
    EXPECT_EQ(readout(unit), held) << "kept by allocation";
    unit.node().deallocateRenderResources();
    clock.advance(10.0);
    EXPECT_EQ(readout(unit), held) << "no analysis without resources";
}

TEST_F(BassEnhancerTest, TheTrackedFrequencyReplacesTheCrossoverOnlyAboveTheMiddle) {
    const Stereo sound = noise(4096);
    const auto playedWith = [&](float crossover, float adaptive) {
        UnitHarness unit = make();
        return unit.set(BassEnhancerUnit::crossover, crossover)
            .set(BassEnhancerUnit::adaptive, adaptive)
            .play(sound);
    };
    const Stereo at150 = playedWith(150.0F, 0.0F);
    const Stereo at80 = playedWith(80.0F, 0.0F);
    EXPECT_NE(at150, at80);
    EXPECT_EQ(playedWith(150.0F, 0.5F), at150);
    EXPECT_EQ(playedWith(150.0F, 0.51F), at80) << "80 Hz before the first estimate";
}

} // namespace
} // namespace quorbel
