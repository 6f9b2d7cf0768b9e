#include "analysis/SpectrumRing.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace quorbel {
namespace {

/// `count` samples that count on from `first`.
std::vector<float> counting(std::size_t count, float first) {
    std::vector<float> samples(count);
    std::iota(samples.begin(), samples.end(), first);
    return samples;
}

TEST(SpectrumRing, GivesNothingBeforeThereIsEnough) {
    SpectrumRing ring(4096);
    std::vector<float> into(2048, -1.0F);
    EXPECT_FALSE(ring.snapshot(into));
    ring.write(counting(2047, 0.0F));
    EXPECT_FALSE(ring.snapshot(into));
    EXPECT_EQ(into, std::vector<float>(2048, -1.0F)) << "untouched";
    ring.write(counting(1, 2047.0F));
    EXPECT_TRUE(ring.snapshot(into));
    EXPECT_EQ(into, counting(2048, 0.0F));
}

TEST(SpectrumRing, GivesTheNewestInTimeOrderWhereverTheEndOfTheStorageFalls) {
    SpectrumRing ring(4096);
    std::vector<float> into(2048);
    std::size_t written = 0;
    for (const std::size_t piece : {3000UL, 1095UL, 2UL, 511UL, 4096UL, 10000UL, 1UL, 2049UL}) {
        ring.write(counting(piece, static_cast<float>(written)));
        written += piece;
        ASSERT_TRUE(ring.snapshot(into));
        EXPECT_EQ(into, counting(2048, static_cast<float>(written - 2048))) << written;
    }
}

} // namespace
} // namespace quorbel
