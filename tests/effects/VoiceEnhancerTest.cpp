#include "effects/AnalysingUnitTest.h"
#include "effects/EffectComponents.h"
#include "effects/ModelComparison.h"
#include "effects/cores/VoiceDetector.h"
#include "effects/units/VoiceEnhancerUnit.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class VoiceModel final : public UnitModel {
  public:
    using UnitModel::UnitModel;

    void process(ModelBlock &block, const Settings &s) override {
        const float mix = s.at(VoiceEnhancerUnit::amount) / 100.0F;
        if (mix < 0.001F) {
            muds_ = {};
            presences_ = {};
            return;
        }
        const std::array<float, 5> mud =
            peak(1884.9554F / sampleRate_, 1.0F, -s.at(VoiceEnhancerUnit::mud));
        const std::array<float, 5> presence =
            peak(18849.555F / sampleRate_, 1.2F, s.at(VoiceEnhancerUnit::presence));
        for (std::size_t i = 0; i < block.left.size(); ++i) {
            for (const std::size_t channel : {0U, 1U}) {
                double &x = (channel == 0 ? block.left : block.right)[i];
                const double shaped = presences_[channel](muds_[channel](x, mud), presence);
                x += double{mix} * (shaped - x);
            }
        }
    }

  private:
    static std::array<float, 5> peak(float w, float q, float gainDB) {
        const float A = std::pow(10.0F, gainDB / 40.0F);
        const float alpha = std::sin(w) / (2.0F * q);
        const float norm = 1.0F + alpha / A;
        return {(1.0F + alpha * A) / norm, -2.0F * std::cos(w) / norm, (1.0F - alpha * A) / norm,
                -2.0F * std::cos(w) / norm, (1.0F - alpha / A) / norm};
    }

    std::array<ModelSection, 2> muds_;
    std::array<ModelSection, 2> presences_;
};

using VoiceEnhancerTest = AnalysingUnitTest<VoiceEnhancerUnit, voiceEnhancerDescription>;

TEST_F(VoiceEnhancerTest, MatchesTheModel) {
    const auto settings = [](float amount, float presence, float mud) {
        return Settings{{0, amount}, {1, presence}, {2, mud}, {3, 0.5F}};
    };
    const std::vector<Settings> schedule{
        settings(100, 3, 2.5F), settings(50, 6, 4),    settings(0, 6, 4), settings(100, 0, 0),
        settings(0.09F, 3, 2),  settings(0.11F, 6, 4), settings(77, 1, 4)};
    expectMatchesModel<VoiceEnhancerUnit, VoiceModel>({44'100.0, 48'000.0}, schedule, 3e-5);
}

TEST_F(VoiceEnhancerTest, ListensWhileItRests) {
    UnitHarness unit = make();
    unit.set(VoiceEnhancerUnit::amount, 0.0F);
    playInTime(unit, sine(1000.0, 48'000));
    EXPECT_GT(readout(unit), 0.5F);
}

TEST_F(VoiceEnhancerTest, ConfidenceFollowsTheShareOfTheVoiceBand) {
    double expected = 0.0;
    const int estimates = followSchedule(700, 14'000, 1e-5, [&](const auto &heard) {
        double total = 0.0;
        double voice = 0.0;
        for (std::size_t k = 6; k <= 853; ++k) {
            const double p = naivePower(heard, k);
            total += p;
            voice += k >= 26 && k <= 341 ? p : 0.0;
        }
        const double target = std::clamp((voice / total - 0.3) / 0.3, 0.0, 1.0);
        return expected = 0.9 * expected + 0.1 * target;
    });
    EXPECT_EQ(estimates, 4);
    EXPECT_GT(expected, 0.0) << "the comparison has something to compare";
    EXPECT_FLOAT_EQ(VoiceDetector::confidenceFor(0.45F), 0.5F);
}

TEST_F(VoiceEnhancerTest, AdaptiveModeScalesByTheConfidenceOnlyAboveTheMiddle) {
    const Stereo sound = noise(480);
    UnitHarness unit = make();
    unit.set(VoiceEnhancerUnit::adaptive, 1.0F);
    EXPECT_EQ(unit.play(sound), sound) << "no confidence, no effect";
    unit.set(VoiceEnhancerUnit::adaptive, 0.5F);
    EXPECT_NE(unit.play(sound), sound);

    unit.set(VoiceEnhancerUnit::adaptive, 1.0F);
    playInTime(unit, sine(1000.0, 480'000));
    EXPECT_GT(readout(unit), 0.99F);
    EXPECT_NE(unit.play(sound), sound);
    const float held = readout(unit);
    playInTime(unit, Stereo(48'000));
    playInTime(unit, Stereo(48'000));
    EXPECT_NEAR(readout(unit), held, 0.1F) << "silence holds it";
}

} // namespace
} // namespace quorbel
