#include "effects/EffectUnit.h"

#include "effects/EffectComponents.h"
#include "effects/UnitHarness.h"
#include "effects/units/BassEnhancerUnit.h"
#include "effects/units/MSWidenerUnit.h"
#include "effects/units/SpatializerUnit.h"
#include "effects/units/VoiceEnhancerUnit.h"
#include "platform/threads/ManualClock.h"
#include "platform/units/UnitStatus.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class FailingUnit final : public EffectUnit {
  public:
    FailingUnit() : EffectUnit({}, 0, {}) {}
    RenderBlock internalRenderBlock() override { return {}; }

  protected:
    Status prepare(float) override { return statusFormatNotSupported; }
};

TEST(EffectUnitTest, AFailedAllocationLeavesAStageThatIsPassedOver) {
    UnitHarness harness(std::make_unique<FailingUnit>());
    EXPECT_EQ(harness.allocate(), statusFormatNotSupported);
    EXPECT_FALSE(harness.unit().renderResourcesAllocated());
    const Stereo untouched = sine(1000, 16);
    EXPECT_EQ(harness.play(untouched), untouched);
}

/// The neighbours that one pass renders, in the chain's order.
struct Enhancers {
    ManualClock clock;
    UnitHarness bass{
        std::make_unique<BassEnhancerUnit>(bassEnhancerDescription, 0, clockedSerialQueues(clock))};
    UnitHarness voice{std::make_unique<VoiceEnhancerUnit>(voiceEnhancerDescription, 0,
                                                          clockedSerialQueues(clock))};
    UnitHarness widener{std::make_unique<MSWidenerUnit>(msWidenerDescription, 0)};
    UnitHarness spatializer{std::make_unique<SpatializerUnit>(spatializerDescription, 0)};
    std::vector<UnitHarness *> all{&bass, &voice, &widener, &spatializer};
    std::vector<GraphNode *> behindBass{&voice.node(), &widener.node(), &spatializer.node()};

    Enhancers() {
        for (UnitHarness *unit : all)
            unit->allocate();
        bass.set(BassEnhancerUnit::adaptive, 1.0F);
        voice.set(VoiceEnhancerUnit::adaptive, 1.0F);
    }

    /// Another setting in every block; the voice enhancer rests in some.
    void set(std::uint32_t block) {
        voice.set(VoiceEnhancerUnit::amount, block % 5 == 0 ? 0.0F : 80.0F);
        widener.set(MSWidenerUnit::width, block % 3 == 0 ? 40.0F : 130.0F);
        for (UnitHarness *unit : all)
            unit->node().takeSettings();
    }

    [[nodiscard]] float readout(UnitHarness &unit) {
        return static_cast<EffectUnit &>(unit.unit()).readout();
    }
};

TEST(EffectUnitTest, NeighboursInOnePassSoundAndMeasureAsOneByOne) {
    Enhancers joined;
    Enhancers alone;
    ASSERT_EQ(joined.bass.node().joinable(joined.behindBass), 3U);
    ASSERT_EQ(joined.bass.node().joinable(std::span(joined.behindBass).first(2)), 0U);
    for (std::uint32_t block = 0; block < 60; ++block) {
        const std::uint32_t frames = block % 2 == 0 ? 512 : 333 + block;
        Stereo expected = noise(frames, 0.9F, block + 1);
        Stereo sound = expected;
        joined.set(block);
        alone.set(block);
        AudioBufferList view = sound.view();
        ASSERT_TRUE(joined.bass.node().renderJoined(joined.behindBass, view, frames));
        for (UnitHarness *unit : alone.all) {
            AudioBufferList expectedView = expected.view();
            unit->render(expectedView, frames);
        }
        ASSERT_EQ(sound, expected) << "block " << block;
        joined.clock.advance(frames / 48'000.0);
        alone.clock.advance(frames / 48'000.0);
        ASSERT_EQ(joined.readout(joined.bass), alone.readout(alone.bass));
        ASSERT_EQ(joined.readout(joined.voice), alone.readout(alone.voice));
    }
    EXPECT_GT(joined.readout(joined.voice), 0.0F) << "the analysis has heard something";
}

} // namespace
} // namespace quorbel
