#include "platform/units/ParameterTree.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorbel {
namespace {

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

TEST(ParameterTreeTest, ValuesLiveWhereTheImplementorKeepsThemAndParametersOutliveTheTree) {
    const auto parameter = gain();
    float stored = 1.0F;
    {
        ParameterTree tree({parameter});
        tree.implementorValueProvider = [&](const Parameter &) { return stored; };
        tree.implementorValueObserver = [&](const Parameter &changed, float value) {
            EXPECT_EQ(changed.address(), 7U);
            stored = value;
        };
        EXPECT_EQ(parameter->value(), 1.0F);
        parameter->setValue(40.0F);
        EXPECT_EQ(stored, 12.0F);
        stored = -2.0F;
        EXPECT_EQ(parameter->value(), -2.0F);
    }
    parameter->setValue(3.0F);
    EXPECT_EQ(stored, -2.0F);
    EXPECT_EQ(parameter->value(), 3.0F);
}

} // namespace
} // namespace quorbel
