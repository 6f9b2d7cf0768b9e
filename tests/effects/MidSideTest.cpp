// The two mid/side units: widener and spatializer.

#include "effects/ModelComparison.h"
#include "effects/units/MSWidenerUnit.h"
#include "effects/units/SpatializerUnit.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class WidenerModel final : public UnitModel {
  public:
    using UnitModel::UnitModel;

    void process(ModelBlock &block, const Settings &settings) override {
        const double target = double{settings.at(MSWidenerUnit::width)} / 100.0;
        const std::size_t count = block.left.size();
        for (std::size_t i = 0; i < count; ++i) {
            const double width = rampedTo(target, previous_, i, count);
            const double mid = (block.left[i] + block.right[i]) / 2.0;
            const double side = width * (block.left[i] - block.right[i]) / 2.0;
            block.left[i] = mid + side;
            block.right[i] = mid - side;
        }
        previous_ = target;
    }

  private:
    double previous_ = 1.0;
};

class SpatializerModel final : public UnitModel {
  public:
    using UnitModel::UnitModel;

    void process(ModelBlock &block, const Settings &settings) override {
        const float a = settings.at(SpatializerUnit::amount) / 100.0F;
        const float w = 6.283185F * settings.at(SpatializerUnit::notch) / sampleRate_;
        const float A = std::pow(10.0F, 2.0F * (-3.0F * a) / 40.0F);
        const float alpha = std::sin(w) / 2.4F;
        const float a0 = 1.0F + alpha / A;
        const float b1 = -2.0F * std::cos(w) / a0;
        const std::array<float, 5> coefficients{
            (1.0F + alpha * A) / a0, b1, (1.0F - alpha * A) / a0, b1, (1.0F - alpha / A) / a0};
        for (std::size_t i = 0; i < block.left.size(); ++i) {
            const double mid = (block.left[i] + block.right[i]) / 2.0;
            const double side = section_(
                (1.0 + 0.5 * double{a}) * (block.left[i] - block.right[i]) / 2.0, coefficients);
            block.left[i] = mid + side;
            block.right[i] = mid - side;
        }
    }

  private:
    ModelSection section_;
};

TEST(MSWidenerTest, MatchesTheModel) {
    expectMatchesModel<MSWidenerUnit, WidenerModel>(
        {48'000.0}, {{{0, 100.0F}}, {{0, 0.0F}}, {{0, 200.0F}}, {{0, 130.0F}}}, 5e-7);
}

TEST(SpatializerTest, MatchesTheModel) {
    const std::vector<Settings> schedule{{{0, 50.0F}, {1, 2000.0F}},
                                         {{0, 0.0F}, {1, 2000.0F}},
                                         {{0, 100.0F}, {1, 500.0F}},
                                         {{0, 100.0F}, {1, 8000.0F}},
                                         {{0, 30.0F}, {1, 1234.5F}}};
    // The 500 Hz dip has poles close to the unit circle: 32-bit noise grows with the sample rate.
    expectMatchesModel<SpatializerUnit, SpatializerModel>({44'100.0, 48'000.0}, schedule, 2e-5);
    expectMatchesModel<SpatializerUnit, SpatializerModel>({96'000.0}, schedule, 5e-5);
}

} // namespace
} // namespace quorbel
