#include "effects/EffectUnit.h"

#include "effects/EffectComponents.h"
#include "effects/GainTestUnit.h"
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

std::unique_ptr<GainTestUnit> makeUnit() {
    return std::make_unique<GainTestUnit>(gainTestDescription, 0);
}

TEST(EffectUnitTest, AddressesOutsideTheTableHoldNothing) {
    const auto unit = makeUnit();
    ParameterTree &tree = *unit->parameterTree();
    EXPECT_EQ(tree.parameterWithAddress(2), nullptr);
    const Parameter stranger({.identifier = "x", .name = "X", .address = 2});
    tree.implementorValueObserver(stranger, 1.0F);
    EXPECT_EQ(tree.implementorValueProvider(stranger), 0.0F);
    EXPECT_EQ(tree.parameterWithAddress(0)->value(), 2.0F);
    EXPECT_EQ(tree.parameterWithAddress(1)->value(), 1.0F);
}

TEST(EffectUnitTest, ANewValueCountsFromTheNextBlockOn) {
    UnitHarness harness(makeUnit());
    ASSERT_EQ(harness.allocate(), statusOK);
    EXPECT_EQ(harness.play(sine(1000, 64, 0.1)), sine(1000, 64, 0.2));
    harness.set(GainTestUnit::gain, 1e9F);
    const Sound loud = harness.play(sine(1000, 64, 0.5));
    EXPECT_FLOAT_EQ(loud.left[7], 12.0F * sine(1000, 64, 0.5).left[7]) << "clamped to the range";
}

TEST(EffectUnitTest, TreeAndRenderBlockOutliveTheUnit) {
    auto unit = makeUnit();
    const auto tree = unit->parameterTree();
    const RenderBlock block = unit->internalRenderBlock();
    tree->parameterWithAddress(0)->setValue(3.0F);
    unit->takeSettings();
    unit.reset();

    tree->parameterWithAddress(0)->setValue(5.0F);
    EXPECT_EQ(tree->parameterWithAddress(0)->value(), 5.0F);
    Sound sound = sine(1000, 16);
    AudioBufferList view = sound.view();
    RenderActionFlags flags = 0;
    const PullInputBlock ready = [](RenderActionFlags &, const RenderTime &, std::uint32_t,
                                    std::int32_t, AudioBufferList &) { return statusOK; };
    EXPECT_EQ(block(flags, {}, 16, 0, view, nullptr, ready), statusOK);
    EXPECT_FLOAT_EQ(sound.left[5], 3.0F * sine(1000, 16).left[5]) << "as taken last";
}

TEST(EffectUnitTest, AFailedAllocationChangesNothing) {
    auto unit = makeUnit();
    EXPECT_EQ(unit->sampleRate(), 48000.0F);
    std::string error;
    ASSERT_EQ(unit->inputBusses()[0].setFormat({96000.0, 2}), statusOK);
    EXPECT_EQ(unit->allocateRenderResources(error), statusFormatNotSupported);
    EXPECT_EQ(unit->sampleRate(), 48000.0F);

    UnitHarness harness(std::move(unit));
    EXPECT_EQ(harness.allocate(768000.0), statusFormatNotSupported);
    EXPECT_FALSE(harness.unit().renderResourcesAllocated());
    const Sound untouched = sine(1000, 16);
    EXPECT_EQ(harness.play(untouched), untouched) << "a stage without resources is passed over";
}

TEST(EffectComponentsTest, AreAllRegistered) {
    ManualClock clock;
    AudioUnitRegistry registry(clock);
    registerEffectUnits(registry, clockedSerialQueues(clock));
    std::vector<std::string> registered;
    for (const auto &component : registry.components())
        registered.push_back(component.name);
    EXPECT_EQ(registered,
              (std::vector<std::string>{"MSWidener", "Spatializer", "BassEnhancer", "VoiceEnhancer",
                                        "Saturation", "Limiter", "Crossfeed", "AutoGain"}));
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
        Sound expected = noise(frames, 0.9F, block + 1);
        Sound sound = expected;
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
