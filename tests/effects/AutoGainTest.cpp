#include "effects/EffectComponents.h"
#include "effects/ModelComparison.h"
#include "effects/units/AutoGainUnit.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorbel {
namespace {

class AutoGainModel final : public UnitModel {
  public:
    using UnitModel::UnitModel;

    void process(ModelBlock &block, const Settings &s) override {
        const bool levelling = s.at(AutoGainUnit::enabled) >= 0.5F;
        const double m = s.at(AutoGainUnit::manualEnabled) >= 0.5F
                             ? std::pow(10.0, double{s.at(AutoGainUnit::manual)} / 20.0)
                             : 1.0;
        // 32-bit coefficients: one minus a 3 s smoothing coefficient keeps only 7 significant bits.
        const auto keep = [this](float seconds) {
            return double{std::exp(-1.0F / (seconds * sampleRate_))};
        };
        if (!levelling)
            gain_ = 1.0;
        const double target = std::pow(10.0, double{s.at(AutoGainUnit::target)} / 20.0);
        for (std::size_t i = 0; i < block.left.size(); ++i) {
            double &left = block.left[i];
            double &right = block.right[i];
            if (levelling) {
                power_ =
                    keep(0.4F) * power_ + (1.0 - keep(0.4F)) * (left * left + right * right) / 2.0;
                if (std::sqrt(power_) > 0.0056234)
                    gain_ = keep(3.0F) * gain_ +
                            (1.0 - keep(3.0F)) * std::clamp(target / std::sqrt(power_), 0.25, 4.0);
            }
            trim_ = keep(0.03F) * trim_ + (1.0 - keep(0.03F)) * m;
            left *= trim_ * gain_;
            right *= trim_ * gain_;
        }
    }

  private:
    double power_ = 0.0;
    double gain_ = 1.0;
    double trim_ = 1.0;
};

TEST(AutoGainTest, MatchesTheModel) {
    const auto settings = [](float target, float enabled, float manual, float manualEnabled) {
        return Settings{{0, target}, {1, enabled}, {2, manual}, {3, manualEnabled}};
    };
    const std::vector<Settings> schedule{settings(-16, 0, 0, 0),   settings(-16, 1, 0, 0),
                                         settings(-16, 1, 6, 1),   settings(-30, 1, 6, 1),
                                         settings(-30, 0, -12, 1), settings(-6, 0, 0, 1),
                                         settings(-6, 1, 0, 0)};
    // 32-bit rounding biases every step of the slow smoother and stops it 0.6 % before its target.
    expectMatchesModel<AutoGainUnit, AutoGainModel>({48'000.0}, schedule, 1e-3);
}

TEST(AutoGainTest, TheTrimStartsAtItsTargetAfterAllocation) {
    UnitHarness unit(std::make_unique<AutoGainUnit>(autoGainDescription, 0));
    unit.set(AutoGainUnit::manual, 20.0F).set(AutoGainUnit::manualEnabled, 1.0F);
    ASSERT_EQ(unit.allocate(), statusOK);
    Stereo constant(512);
    constant.left.assign(512, 0.1F);
    EXPECT_NEAR(unit.play(constant).left[0], 0.1 * std::pow(10.0, 12.0 / 20.0), 1e-6);
}

} // namespace
} // namespace quorbel
