#include "platform/graph/NonFinite.h"

#include "platform/graph/GraphFixture.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace quorbel {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

TEST(NonFiniteTest, ReplacesExactlyNonFiniteAndAbsurdSamplesAndCountsFrames) {
    std::mt19937 random(20260711);
    SCOPED_TRACE("seed 20260711");
    for (std::uint32_t frames = 0; frames < 200; ++frames) {
        Stereo sound(frames);
        Stereo expected(frames);
        std::uint32_t bad = 0;
        for (std::uint32_t i = 0; i < frames; ++i) {
            bool badFrame = false;
            for (auto [samples, clean] : {std::pair{&sound.left, &expected.left},
                                          std::pair{&sound.right, &expected.right}}) {
                static constexpr float values[] = {0.5F,
                                                   -1e12F,
                                                   std::numeric_limits<float>::denorm_min(),
                                                   -0.0F,
                                                   0x1.fffffep39F,
                                                   -infinity,
                                                   infinity,
                                                   notANumber,
                                                   -notANumber,
                                                   -0x1p40F,
                                                   std::numeric_limits<float>::max()};
                const std::size_t which = random() % 40 < 38 ? random() % 5 : 5 + random() % 6;
                (*samples)[i] = values[which];
                (*clean)[i] = which < 5 ? values[which] : 0.0F;
                badFrame |= which >= 5;
            }
            bad += badFrame ? 1 : 0;
        }
        ASSERT_EQ(replaceNonFinite(sound.view(), frames), bad);
        ASSERT_EQ(sound, expected);
    }
}

} // namespace
} // namespace quorbel
