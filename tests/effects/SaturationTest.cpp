#include "effects/EffectComponents.h"
#include "effects/ModelComparison.h"
#include "effects/units/SaturationUnit.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class SaturationModel final : public UnitModel {
  public:
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

struct SaturationTest : ::testing::Test {
    UnitHarness unit{std::make_unique<SaturationUnit>(saturationDescription, 0)};
    void SetUp() override { ASSERT_EQ(unit.allocate(), statusOK); }

    float steadyOutputFor(float input, float drive) {
        unit.set(SaturationUnit::drive, drive).play(Sound(8));
        Sound sound(8);
        sound.left.assign(8, input);
        return unit.play(sound).left[3];
    }
};

TEST_F(SaturationTest, MatchesTheModel) {
    for (const auto &[name, sound] : modelSounds()) {
        SaturationModel model;
        UnitHarness fresh(std::make_unique<SaturationUnit>(saturationDescription, 0));
        ASSERT_EQ(fresh.allocate(), statusOK);
        const std::vector<Settings> schedule{{{0, 0.0F}},  {{0, 100.0F}}, {{0, 1.0F}}, {{0, 0.0F}},
                                             {{0, 0.99F}}, {{0, 50.0F}},  {{0, 30.0F}}};
        EXPECT_LT(differenceFromModel(fresh, model, sound, schedule), 3e-7) << name;
    }
}

TEST_F(SaturationTest, HasTheStatedCurve) {
    EXPECT_NEAR(steadyOutputFor(0.1F, 100.0F), 0.05 + std::tanh(0.4) / 4.0, 1e-6);
    EXPECT_NEAR(steadyOutputFor(1.0F, 100.0F), 0.5 + std::tanh(4.0) / 4.0, 1e-6);
    EXPECT_NEAR(steadyOutputFor(0.001F, 100.0F), 0.0015, 1e-7);
}

TEST_F(SaturationTest, RestsBelowOnePercentAndRampsInAndOut) {
    const Sound sound = noise(512);
    EXPECT_EQ(unit.set(SaturationUnit::drive, 0.99F).play(sound), sound);
    unit.set(SaturationUnit::drive, 1.0F).play(sound);
    EXPECT_NE(unit.play(sound), sound) << "exactly 1 % is active";

    unit.set(SaturationUnit::drive, 50.0F).play(sound);
    unit.set(SaturationUnit::drive, 0.0F);
    const Sound leaving = unit.play(sound);
    EXPECT_NE(leaving.left[0], sound.left[0]);
    EXPECT_EQ(leaving.left[511], sound.left[511]);
    EXPECT_EQ(unit.play(sound), sound);

    const Sound oneFrame = unit.set(SaturationUnit::drive, 100.0F).play(sound, 1);
    const auto x = double{sound.left[0]};
    EXPECT_NEAR(oneFrame.left[0], 0.5 * x + std::tanh(4.0 * x) / 4.0, 1e-6);
}

} // namespace
} // namespace quorbel
