#include "engine/KWeighting.h"

#include "support/EveryVectorTarget.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace quorbel {
namespace {

class KWeightingTest : public EveryVectorTarget {};

TEST_P(KWeightingTest, MatchesTheStandardAndIsTheSameOnEveryMachine) {
    constexpr std::uint32_t settling = 48'000;
    constexpr std::uint32_t frames = 96'000;
    // The standard's check frequency, the cut's corner (where its gain is its Q), far above the
    // shelf, and silence.
    const std::array<double, 3> hertz{997.0, 38.135, 12'000.0};
    std::vector<std::vector<float>> sound(4, std::vector<float>(frames));
    for (std::size_t channel = 0; channel < hertz.size(); ++channel)
        for (std::uint32_t i = 0; i < frames; ++i)
            sound[channel][i] = static_cast<float>(
                std::sin(2.0 * std::numbers::pi * hertz[channel] * i / 48'000.0));
    const auto measure = [&] {
        KWeighting weighting(48'000.0);
        KWeighting::Sums total{};
        std::uint32_t count = 0;
        for (std::uint32_t begin = 0; begin < frames; begin += count) {
            count = std::min(begin % 131 + 1, frames - begin);
            const KWeighting::Sums sums =
                weighting.squares({sound[0].data() + begin, sound[1].data() + begin,
                                   sound[2].data() + begin, sound[3].data() + begin},
                                  count);
            for (std::size_t channel = 0; begin >= settling && channel < sums.size(); ++channel)
                total[channel] += sums[channel];
        }
        return total;
    };
    const KWeighting::Sums sums = measure();
    const auto levelDB = [&](std::size_t channel) {
        return 10.0 * std::log10(sums[channel] / (frames - settling));
    };
    EXPECT_NEAR(levelDB(0), -3.01 + 0.691, 0.02);
    EXPECT_NEAR(levelDB(1), -3.01 - 6.02, 0.1);
    EXPECT_NEAR(levelDB(2), -3.01 + 4.0, 0.1);
    EXPECT_EQ(sums[3], 0.0);
    useTarget(0);
    EXPECT_EQ(sums, measure()) << "on the machine's best vectors";
}

INSTANTIATE_TEST_SUITE_P(Targets, KWeightingTest, ::testing::ValuesIn(KWeightingTest::compiled()),
                         KWeightingTest::nameOf);

} // namespace
} // namespace quorbel
