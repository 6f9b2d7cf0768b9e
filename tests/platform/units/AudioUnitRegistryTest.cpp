#include "platform/units/AudioUnitRegistry.h"

#include "platform/threads/ManualClock.h"
#include "platform/units/ParameterTree.h"
#include "platform/units/UnitStatus.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace quorbel {
namespace {

constexpr ComponentDescription testKind{fourCharCode("aufx"), fourCharCode("test"),
                                        fourCharCode("Qrbl")};
static_assert(fourCharCode("agc`") == 0x61676360);

class BareUnit : public AudioUnit {
  public:
    using AudioUnit::AudioUnit;
    AudioUnitBusArray &inputBusses() override { return inputs_; }
    AudioUnitBusArray &outputBusses() override { return outputs_; }
    RenderBlock internalRenderBlock() override { return {}; }

    AudioUnitBus input{{48000.0, 2}};
    AudioUnitBus output{{48000.0, 2}};

  private:
    AudioUnitBusArray inputs_{AudioUnitBusArray::Type::input, {&input}};
    AudioUnitBusArray outputs_{AudioUnitBusArray::Type::output, {&output}};
};

TEST(AudioUnitRegistryTest, MakesRegisteredUnitsAndReportsErrors) {
    ManualClock clock;
    AudioUnitRegistry registry{clock};
    std::unique_ptr<AudioUnit> unit;
    const auto statusOfMaking = [&] {
        Status result = 1;
        registry.instantiate(testKind, 5, [&](std::unique_ptr<AudioUnit> made, Status status) {
            unit = std::move(made);
            result = status;
        });
        EXPECT_EQ(result, 1) << "completed inside the call";
        clock.runPending();
        return result;
    };
    EXPECT_EQ(statusOfMaking(), statusComponentNotFound);
    registry.registerSubclass(
        [](const ComponentDescription &, InstantiationOptions) -> std::unique_ptr<AudioUnit> {
            const AudioUnitBus impossible(StreamFormat{0.0, 2});
            return nullptr;
        },
        testKind, "Broken", 1);
    EXPECT_EQ(statusOfMaking(), statusFormatNotSupported);
    registry.registerSubclass(
        [](const ComponentDescription &description, InstantiationOptions options) {
            return std::make_unique<BareUnit>(description, options);
        },
        testKind, "Test", 2);
    ASSERT_EQ(registry.components().size(), 1U) << "in the place of the broken one";
    EXPECT_EQ(statusOfMaking(), statusOK);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->componentDescription(), testKind);
    EXPECT_EQ(unit->options(), 5U);
}

TEST(AudioUnitTest, BussesKeepTheirFormatWhenOneIsRefusedAndMustAgree) {
    BareUnit unit(testKind, 0);
    EXPECT_EQ(unit.input.setFormat({48000.0, 9}), statusFormatNotSupported);
    EXPECT_EQ(unit.input.format(), (StreamFormat{48000.0, 2}));

    ASSERT_EQ(unit.input.setFormat({96000.0, 2}), statusOK);
    EXPECT_EQ(unit.allocateRenderResources(), statusFormatNotSupported);
    EXPECT_FALSE(unit.renderResourcesAllocated());
    ASSERT_EQ(unit.output.setFormat({96000.0, 2}), statusOK);
    EXPECT_EQ(unit.allocateRenderResources(), statusOK);
    EXPECT_TRUE(unit.renderResourcesAllocated());
}

TEST(ParameterTreeTest, TakesOnlyValuesInsideTheRange) {
    const auto parameter = std::make_shared<Parameter>(ParameterDescription{
        .identifier = "gain", .name = "Gain", .address = 7, .minimum = -12.0F, .maximum = 12.0F});
    const ParameterTree tree({parameter});
    using Limits = std::numeric_limits<float>;
    for (const auto &[set, value] :
         {std::pair{3.5F, 3.5F}, std::pair{1e9F, 12.0F}, std::pair{-Limits::infinity(), -12.0F},
          std::pair{Limits::quiet_NaN(), -12.0F}}) {
        parameter->setValue(set);
        EXPECT_EQ(parameter->value(), value);
    }
    EXPECT_EQ(tree.parameterWithAddress(7), parameter.get());
    EXPECT_EQ(tree.parameterWithAddress(0), nullptr);
}

} // namespace
} // namespace quorbel
