// The two mid/side units: widener and spatializer.

#include "effects/EffectComponents.h"
#include "effects/ModelComparison.h"
#include "effects/units/MSWidenerUnit.h"
#include "effects/units/SpatializerUnit.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class WidenerModel final : public UnitModel {
  public:
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
    explicit SpatializerModel(double sampleRate) : sampleRate_(static_cast<float>(sampleRate)) {}

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
    float sampleRate_;
    ModelSection section_;
};

template <typename Unit> UnitHarness make(double sampleRate = 48'000.0) {
    UnitHarness unit(std::make_unique<Unit>(ComponentDescription{}, 0));
    EXPECT_EQ(unit.allocate(sampleRate), statusOK);
    return unit;
}

TEST(MSWidenerTest, MatchesTheModel) {
    for (const auto &[name, sound] : modelSounds()) {
        UnitHarness unit = make<MSWidenerUnit>();
        WidenerModel model;
        const std::vector<Settings> schedule{
            {{0, 100.0F}}, {{0, 0.0F}}, {{0, 200.0F}}, {{0, 130.0F}}};
        EXPECT_LT(differenceFromModel(unit, model, sound, schedule), 5e-7) << name;
    }
}

TEST(SpatializerTest, MatchesTheModel) {
    for (const auto &[name, sound] : modelSounds()) {
        for (const double rate : {44'100.0, 48'000.0, 96'000.0}) {
            UnitHarness unit = make<SpatializerUnit>(rate);
            SpatializerModel model(rate);
            const std::vector<Settings> schedule{{{0, 50.0F}, {1, 2000.0F}},
                                                 {{0, 0.0F}, {1, 2000.0F}},
                                                 {{0, 100.0F}, {1, 500.0F}},
                                                 {{0, 100.0F}, {1, 8000.0F}},
                                                 {{0, 30.0F}, {1, 1234.5F}}};
            // The dip at 500 Hz has its poles close to the unit circle, where 32 bits are noisy,
            // the more so the higher the rate.
            EXPECT_LT(differenceFromModel(unit, model, sound, schedule), rate > 48e3 ? 5e-5 : 2e-5)
                << name << " at " << rate << " Hz";
        }
    }
}

} // namespace
} // namespace quorbel
