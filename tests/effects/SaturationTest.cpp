#include "effects/ModelComparison.h"
#include "effects/units/SaturationUnit.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class SaturationModel final : public UnitModel {
  public:
    using UnitModel::UnitModel;

    void process(ModelBlock &block, const Settings &settings) override {
        const float percent = settings.at(SaturationUnit::drive);
        const double target = double{percent} / 100.0;
        const double previous = previous_;
        previous_ = target;
        if (percent < 1.0F && previous < 0.01 - 1e-9)
            return;
        const std::size_t count = block.left.size();
        for (std::size_t i = 0; i < count; ++i) {
            const double d = rampedTo(target, previous, i, count);
            const double k = 1.0 + 3.0 * d;
            for (double *x : {&block.left[i], &block.right[i]})
                *x = *x * (1.0 - 0.5 * d) + d * std::tanh(k * *x) / k;
        }
    }

  private:
    double previous_ = 0.0;
};

TEST(SaturationTest, MatchesTheModel) {
    expectMatchesModel<SaturationUnit, SaturationModel>({48'000.0},
                                                        {{{0, 0.0F}},
                                                         {{0, 100.0F}},
                                                         {{0, 1.0F}},
                                                         {{0, 0.0F}},
                                                         {{0, 0.99F}},
                                                         {{0, 1.0F}},
                                                         {{0, 50.0F}},
                                                         {{0, 30.0F}}},
                                                        3e-7);
}

} // namespace
} // namespace quorbel
