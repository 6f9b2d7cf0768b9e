#include "platform/units/AudioUnitRegistry.h"

#include "platform/threads/ManualClock.h"
#include "platform/units/ParameterTree.h"
#include "platform/units/UnitStatus.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace quorbel {
namespace {

constexpr ComponentDescription testKind{fourCharCode("aufx"), fourCharCode("test"),
                                        fourCharCode("Qrbl")};

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

struct AudioUnitRegistryTest : ::testing::Test {
    ManualClock clock;
    AudioUnitRegistry registry{clock};

    struct Result {
        std::unique_ptr<AudioUnit> unit;
        Status status = statusOK;
    };
    std::optional<Result> result;

    void instantiate(const ComponentDescription &description) {
        result.reset();
        registry.instantiate(description, 5,
                             [this](std::unique_ptr<AudioUnit> unit, Status status) {
                                 result = Result{std::move(unit), status};
                             });
        EXPECT_FALSE(result.has_value()) << "completed inside the call";
        clock.runPending();
        ASSERT_TRUE(result.has_value());
    }
};

TEST_F(AudioUnitRegistryTest, MakesWhatIsRegisteredAndReportsWhatIsNot) {
    registry.registerSubclass(
        [](const ComponentDescription &, InstantiationOptions) -> std::unique_ptr<AudioUnit> {
            throw AudioUnitError(-1, "replaced before it is used");
        },
        testKind, "Old", 1);
    registry.registerSubclass(
        [](const ComponentDescription &description, InstantiationOptions options) {
            return std::make_unique<BareUnit>(description, options);
        },
        testKind, "Test", 2);
    ASSERT_EQ(registry.components().size(), 1U);
    EXPECT_EQ(registry.components()[0].name, "Test");

    instantiate(testKind);
    ASSERT_NE(result->unit, nullptr);
    EXPECT_EQ(result->status, statusOK);
    EXPECT_EQ(result->unit->componentDescription(), testKind);
    EXPECT_EQ(result->unit->options(), 5U);

    ComponentDescription unknown = testKind;
    unknown.subtype = fourCharCode("none");
    instantiate(unknown);
    EXPECT_EQ(result->unit, nullptr);
    EXPECT_EQ(result->status, statusComponentNotFound);
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

static_assert(fourCharCode("agc`") == 0x61676360);

std::shared_ptr<Parameter> gain() {
    return std::make_shared<Parameter>(ParameterDescription{
        .identifier = "gain", .name = "Gain", .address = 7, .minimum = -12.0F, .maximum = 12.0F});
}

TEST(ParameterTreeTest, TakesOnlyValuesInsideTheRange) {
    const auto parameter = gain();
    const ParameterTree tree({parameter});
    const auto valueAfterSetting = [&](float value) {
        parameter->setValue(value);
        return parameter->value();
    };
    EXPECT_EQ(valueAfterSetting(3.5F), 3.5F);
    EXPECT_EQ(valueAfterSetting(1e9F), 12.0F);
    EXPECT_EQ(valueAfterSetting(-std::numeric_limits<float>::infinity()), -12.0F);
    EXPECT_EQ(valueAfterSetting(5.0F), 5.0F);
    EXPECT_EQ(valueAfterSetting(std::numeric_limits<float>::quiet_NaN()), 5.0F);
    EXPECT_EQ(parameter->description().flags, 0xC0000000U);
    EXPECT_EQ(tree.parameterWithAddress(7), parameter.get());
    EXPECT_EQ(tree.parameterWithAddress(0), nullptr);
}

TEST_F(AudioUnitRegistryTest, PassesOnWhyAUnitCannotBeMade) {
    registry.registerSubclass(
        [](const ComponentDescription &, InstantiationOptions) -> std::unique_ptr<AudioUnit> {
            const AudioUnitBus impossible(StreamFormat{0.0, 2});
            return nullptr;
        },
        testKind, "Broken", 1);
    instantiate(testKind);
    EXPECT_EQ(result->unit, nullptr);
    EXPECT_EQ(result->status, statusFormatNotSupported);
}

} // namespace
} // namespace quorbel
