#include "effects/EffectUnit.h"

#include "effects/EffectComponents.h"
#include "effects/UnitHarness.h"
#include "effects/units/AutoGainUnit.h"
#include "effects/units/BassEnhancerUnit.h"
#include "effects/units/CrossfeedUnit.h"
#include "effects/units/MSWidenerUnit.h"
#include "effects/units/SpatializerUnit.h"
#include "effects/units/VoiceEnhancerUnit.h"
#include "platform/threads/ManualClock.h"
#include "platform/units/UnitStatus.h"

#include <gtest/gtest.h>

#include <array>

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

/// Adjacent units that share one pass, in the chain's order.
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

    /// Varies the settings over the blocks; the voice enhancer idles in every fifth.
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

TEST(EffectUnitTest, NeighboursInOnePassEqualSeparatePasses) {
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

// An idle unit leaves the pass; the other then sounds as it does alone.
TEST(EffectUnitTest, CrossfeedAndAutoGainInOnePassEqualSeparatePasses) {
    struct Pair {
        UnitHarness crossfeed{std::make_unique<CrossfeedUnit>(crossfeedDescription, 0)};
        UnitHarness autoGain{std::make_unique<AutoGainUnit>(autoGainDescription, 0)};
        std::vector<GraphNode *> behind{&autoGain.node()};

        Pair() {
            crossfeed.allocate();
            autoGain.allocate();
        }
        void set(std::uint32_t block) {
            crossfeed.set(CrossfeedUnit::amount, std::array{0.0F, 0.0F, 60.0F, 30.0F}[block % 4]);
            autoGain.set(AutoGainUnit::enabled, block % 7 == 0 ? 0.0F : 1.0F);
            autoGain.set(AutoGainUnit::manualEnabled, block < 20 ? 0.0F : 1.0F);
            autoGain.set(AutoGainUnit::manual, 3.0F);
            crossfeed.node().takeSettings();
            autoGain.node().takeSettings();
        }
        void renderAlone(Stereo &sound) {
            for (UnitHarness *unit : {&crossfeed, &autoGain}) {
                AudioBufferList view = sound.view();
                unit->render(view, static_cast<std::uint32_t>(sound.frames()));
            }
        }
    };
    Pair joined;
    Pair alone;
    ASSERT_EQ(joined.crossfeed.node().joinable(joined.behind), 1U);
    for (std::uint32_t block = 0; block < 40; ++block) {
        Stereo expected = noise(100 + 7 * block, 0.9F, block + 1);
        Stereo sound = expected;
        joined.set(block);
        alone.set(block);
        AudioBufferList view = sound.view();
        const bool isJoint = joined.crossfeed.node().renderJoined(
            joined.behind, view, static_cast<std::uint32_t>(sound.frames()));
        EXPECT_EQ(isJoint, block % 4 != 1 && block % 7 != 0) << "block " << block;
        if (!isJoint)
            joined.renderAlone(sound);
        alone.renderAlone(expected);
        ASSERT_EQ(sound, expected) << "block " << block;
        ASSERT_EQ(static_cast<EffectUnit &>(joined.autoGain.unit()).readout(),
                  static_cast<EffectUnit &>(alone.autoGain.unit()).readout());
    }
}

} // namespace
} // namespace quorbel
