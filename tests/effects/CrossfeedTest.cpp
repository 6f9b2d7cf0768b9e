#include "effects/ModelComparison.h"
#include "effects/units/CrossfeedUnit.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorbel {
namespace {

/// Keeps the full input history instead of a ring.
class CrossfeedModel final : public UnitModel {
  public:
    explicit CrossfeedModel(float sampleRate)
        : UnitModel(sampleRate), delay_(static_cast<std::size_t>(
                                     std::max(1.0, std::round(double{sampleRate} * 0.00033)))) {
        if (delay_ == 32)
            delay_ = 0; // the 32-frame line reads the sample just written
        const float w = 4398.2295F / sampleRate;
        const float alpha = std::sin(w) / 1.414F;
        const float a0 = 1.0F + alpha;
        const float c = std::cos(w);
        coefficients_ = {(1.0F - c) * 0.5F / a0, (1.0F - c) / a0, (1.0F - c) * 0.5F / a0,
                         -2.0F * c / a0, (1.0F - alpha) / a0};
    }

    void process(ModelBlock &block, const Settings &settings) override {
        const float percent = settings.at(CrossfeedUnit::amount);
        const double target = double{percent} / 100.0;
        const double previous = previous_;
        previous_ = target;
        if (percent < 1.0F && previous < 0.01 - 1e-9) {
            history_ = {};
            sections_ = {};
            return;
        }
        const std::size_t count = block.left.size();
        for (std::size_t i = 0; i < count; ++i) {
            history_.left.push_back(block.left[i]);
            history_.right.push_back(block.right[i]);
            const std::size_t now = history_.left.size() - 1;
            const double oldL = now >= delay_ ? history_.left[now - delay_] : 0.0;
            const double oldR = now >= delay_ ? history_.right[now - delay_] : 0.0;
            const double crossL = sections_[0](oldL, coefficients_);
            const double crossR = sections_[1](oldR, coefficients_);
            const double amount = rampedTo(target, previous, i, count);
            if (amount <= 0.0)
                continue;
            const double g = std::min(amount, 1.0) * 0.5;
            block.left[i] = crossR * g + block.left[i] * (1.0 - g);
            block.right[i] = crossL * g + block.right[i] * (1.0 - g);
        }
    }

  private:
    std::size_t delay_;
    std::array<float, 5> coefficients_{};
    std::array<ModelSection, 2> sections_{};
    ModelBlock history_;
    double previous_ = 0.0;
};

TEST(CrossfeedTest, MatchesTheModel) {
    const std::vector<Settings> schedule{{{0, 0.0F}}, {{0, 100.0F}}, {{0, 60.0F}},
                                         {{0, 1.0F}}, {{0, 0.5F}},   {{0, 30.0F}}};
    expectMatchesModel<CrossfeedUnit, CrossfeedModel>({44'100.0, 48'000.0, 88'200.0, 96'000.0},
                                                      schedule, 5e-6);
    expectMatchesModel<CrossfeedUnit, CrossfeedModel>({176'400.0, 192'000.0}, schedule, 2e-5);
}

} // namespace
} // namespace quorbel
