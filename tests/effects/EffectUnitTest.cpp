#include "effects/EffectUnit.h"

#include "effects/EffectComponents.h"
#include "effects/GainTestUnit.h"
#include "effects/UnitHarness.h"
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

} // namespace
} // namespace quorbel
