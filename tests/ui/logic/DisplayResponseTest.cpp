#include "ui/logic/DrawnCurves.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace quorbel {
namespace {

using Type = EQBand::FilterType;
using ::testing::Each;

EQBand band(Type type, float frequency, float gainDB, float q) {
    return {.frequency = frequency, .gainDB = gainDB, .q = q, .filterType = type};
}

/// The drawn value at the point nearest to a frequency in Hz.
double at(double frequencyHz, const std::vector<EQBand> &bands) {
    std::size_t nearest = 0;
    for (std::size_t i = 0; i < displayPointCount; ++i)
        if (std::abs(std::log(displayFrequency(i) / frequencyHz)) <
            std::abs(std::log(displayFrequency(nearest) / frequencyHz)))
            nearest = i;
    return displayResponse(bands)[nearest];
}

TEST(DisplayResponseTest, EachTypeTakesHalfOrItsCornerValueAtItsFrequency) {
    // The nearest grid point is within 4 % of f0, where shelves are within 3 % of half their gain.
    EXPECT_NEAR(at(1000, {band(Type::parametric, 1000, 6, 1)}), 6.0, 0.05);
    EXPECT_NEAR(at(1000, {band(Type::lowShelf, 1000, 6, 1)}), 3.0, 0.25);
    EXPECT_NEAR(at(1000, {band(Type::highShelf, 1000, -6, 1)}), -3.0, 0.25);
    EXPECT_NEAR(at(1000, {band(Type::lowPass, 1000, 6, 1)}), -3.01, 0.4);
    EXPECT_NEAR(at(1000, {band(Type::highPass, 1000, 6, 1)}), -3.01, 0.4);

    // Far away: the full gain on a shelf's own side, 12 dB per octave at Q 1 for a pass.
    EXPECT_NEAR(at(20, {band(Type::lowShelf, 1000, 6, 1)}), 6.0, 0.01);
    EXPECT_NEAR(at(20000, {band(Type::lowShelf, 1000, 6, 1)}), 0.0, 0.02);
    EXPECT_NEAR(at(20000, {band(Type::highShelf, 1000, -6, 1)}), -6.0, 0.02);
    EXPECT_NEAR(at(20000, {band(Type::lowPass, 1000, 0, 1)}), -20 * std::log10(20.0), 0.02);
    EXPECT_NEAR(at(20, {band(Type::highPass, 1000, 0, 1)}), -20 * std::log10(50.0), 0.02);
    EXPECT_NEAR(at(20000, {band(Type::lowPass, 20, 0, 10)}), -120.0, 1e-6) << "not below";
}

TEST(DisplayResponseTest, ParametricWidthFollowsQWhichIsNeverBelowATenth) {
    // A grid point ten steps above f0 has a frequency ratio r: x = (r - 1/r) Q.
    const auto tenPointsAbove = [](float q) {
        const EQBand peak = band(Type::parametric, static_cast<float>(displayFrequency(50)), 10, q);
        return displayResponse({peak})[60];
    };
    const double r = displayFrequency(60) / displayFrequency(50);
    const double x = r - 1.0 / r;
    EXPECT_NEAR(tenPointsAbove(1.0F), 10.0 / (1.0 + x * x), 1e-5);
    EXPECT_NEAR(tenPointsAbove(4.0F), 10.0 / (1.0 + 16.0 * x * x), 1e-5);
    EXPECT_NEAR(tenPointsAbove(0.0F), tenPointsAbove(0.1F), 1e-6);
    EXPECT_NEAR(tenPointsAbove(-3.0F), tenPointsAbove(0.1F), 1e-6);
}

TEST(DisplayResponseTest, SumsBandsAndLeavesBypassedOnesOut) {
    EQBand off = band(Type::parametric, 1000, 12, 1);
    off.bypassed = true;
    const EQBand one = band(Type::parametric, 1000, 6, 1);
    EXPECT_DOUBLE_EQ(at(700, {one, one, off}), 2 * at(700, {one}));

    const DisplayResponse flat = displayResponse({off});
    EXPECT_THAT(flat, Each(0.0));
    EXPECT_EQ(peakDB(flat), 0.0);
    EXPECT_THAT(curveValues(flat, -15, 15), Each(0.5));
    EXPECT_EQ(peakDB(displayResponse({})), 0.0);
}

TEST(DisplayResponseTest, PeakIsTheLargestMagnitudeWithItsSignAndTheFirstOfEqualOnes) {
    EXPECT_NEAR(peakDB(displayResponse({band(Type::parametric, 1000, 6, 1)})), 6.0, 0.05);
    EXPECT_NEAR(peakDB(displayResponse(
                    {band(Type::parametric, 1000, 3, 4), band(Type::parametric, 100, -9, 4)})),
                -9.0, 0.5);
    DisplayResponse tie{};
    tie[3] = -2.0;
    tie[7] = 2.0;
    EXPECT_EQ(peakDB(tie), -2.0);
}

} // namespace
} // namespace quorbel
