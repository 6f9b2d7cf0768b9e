#include "engine/TruePeak.h"

#include "support/EveryVectorTarget.h"
#include "support/Stereo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace quorbel {
namespace {

class TruePeakTest : public EveryVectorTarget {};

Peaks measured(const std::vector<float> &left, const std::vector<float> &right) {
    TruePeak truePeak;
    Peaks held;
    std::uint32_t count = 0;
    for (std::uint32_t begin = 0; begin < left.size(); begin += count) {
        count = std::min(begin % 131 + 1, static_cast<std::uint32_t>(left.size()) - begin);
        truePeak.measure({left.data() + begin, right.data() + begin}, count, held);
    }
    return held;
}

TEST_P(TruePeakTest, FindsThePeakBetweenTheSamplesOfEitherChannel) {
    constexpr std::uint32_t frames = 4800;
    const std::vector<float> silence(frames);
    // Sampled 45 degrees beside its crests: the samples are 3 dB below the sine's peak.
    std::vector<float> quarter(frames);
    for (std::uint32_t i = 0; i < frames; ++i)
        quarter[i] = static_cast<float>(0.5 * std::sin(std::numbers::pi * (0.5 * i + 0.25))) *
                     std::min(1.0F, static_cast<float>(i) / 2400.0F);
    for (const Peaks &peaks : {measured(quarter, silence), measured(silence, quarter)}) {
        EXPECT_NEAR(peaks.sample, 0.35355F, 1e-4F);
        EXPECT_NEAR(peaks.between, 0.5F, 0.01F);
    }
    EXPECT_EQ(measured(silence, silence).between, 0.0F);
}

TEST_P(TruePeakTest, MissesNoPeakWhereItSavesTheOversampling) {
    const std::vector<float> white = noise(20'000, 1.0F, 8).left;
    // Rough and smooth sound that grows louder, so that new peaks keep arriving.
    for (const std::size_t width : {1U, 4U}) {
        std::vector<float> sound(white.size());
        for (std::size_t i = width; i < sound.size(); ++i)
            for (std::size_t k = 0; k < width; ++k)
                sound[i] += static_cast<float>(i) / 20'000.0F * white[i - k];
        const std::vector<float> silence(sound.size());
        // Single samples without a held peak make it compute every value.
        TruePeak single;
        std::vector<float> expected;
        for (const float &sample : sound) {
            Peaks held;
            single.measure({&sample, silence.data()}, 1, held);
            expected.push_back(std::max(held.between, expected.empty() ? 0.0F : expected.back()));
        }
        TruePeak truePeak;
        Peaks held;
        for (std::uint32_t end = 0, count = 1; end + count < sound.size(); count = end % 131 + 1) {
            truePeak.measure({sound.data() + end, silence.data()}, count, held);
            end += count;
            ASSERT_FLOAT_EQ(held.between, expected[end - 1]) << end << " frames, width " << width;
        }
        EXPECT_GT(held.between, 1.01F * held.sample) << "width " << width;
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, TruePeakTest, ::testing::ValuesIn(TruePeakTest::compiled()),
                         TruePeakTest::nameOf);

} // namespace
} // namespace quorbel
