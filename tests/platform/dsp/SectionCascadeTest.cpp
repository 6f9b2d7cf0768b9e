#include "equalizer/SectionCascade.h"

#include "equalizer/MovingCascade.h"
#include "support/EveryVectorTarget.h"
#include "support/Stereo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace quorbel {
namespace {

/// Returns sections of random shape between 20 Hz and 15 kHz.
std::vector<SectionCoefficients> someSections(std::size_t count) {
    std::mt19937 random(31);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    std::vector<SectionCoefficients> result;
    for (std::size_t i = 0; i < count; ++i)
        result.emplace_back(
            StateVariableDesign{.cutoff = 0.0013 * std::pow(1000.0, uniform(random)),
                                .damping = 0.25 + uniform(random),
                                .high = 0.5 + uniform(random),
                                .band = 0.25 + uniform(random),
                                .low = 0.5 + uniform(random)});
    return result;
}

using Process = void (*)(const SectionCascade &, float *, float *, std::uint32_t) noexcept;

Stereo run(Process process, const std::vector<SectionCoefficients> &sections, Stereo sound,
           std::size_t block) {
    std::vector<SectionState> left(sections.size());
    std::vector<SectionState> right(sections.size());
    return inBlocks(std::move(sound), block, [&](float *l, float *r, std::uint32_t frames) {
        process({sections.data(), left.data(), right.data(), sections.size()}, l, r, frames);
    });
}

class SectionCascadeOnTarget : public EveryVectorTarget {};

TEST_P(SectionCascadeOnTarget, AgreesWithThePlainOne) {
    const Stereo sound = noise(20000);
    for (const std::size_t count : {1U, 2U, 4U, 5U, 10U, 16U, 17U, 33U}) {
        const auto sections = someSections(count);
        const Stereo expected = run(processCascadePlainly, sections, sound, sound.left.size());
        const Stereo whole = run(processCascade, sections, sound, sound.left.size());
        // Rounding noise of 32-bit floats, as low as in the plain version.
        EXPECT_LT(errorDB(whole.left, expected.left), -110.0) << count << " sections";
        EXPECT_LT(errorDB(whole.right, expected.right), -110.0) << count << " sections";
        for (const std::size_t block : {1U, 3U, 17U, 64U, 1000U})
            EXPECT_EQ(run(processCascade, sections, sound, block), whole)
                << count << " sections in blocks of " << block;
    }
}

// Rounding during a glide depends neither on the CPU nor on the block size.
TEST_P(SectionCascadeOnTarget, MovesAsThePlainOneBitByBit) {
    constexpr std::uint32_t stepFrames = 16;
    const Stereo sound = noise(stepFrames);
    const auto ends = someSections(34);
    for (const std::size_t count : {1U, 3U, 5U, 10U, 16U, 17U}) {
        const auto moved = [&](auto process, std::uint32_t block) {
            std::vector<SectionState> left(count, {0.1F, -0.2F});
            std::vector<SectionState> right(count, {-0.3F, 0.4F});
            std::vector<MovingSection> sections(count);
            for (std::size_t i = 0; i < count; ++i)
                sections[i] = {&ends[i], i % 3 == 1 ? nullptr : &ends[17 + i], &left[i], &right[i]};
            Stereo result = sound;
            for (std::uint32_t start = 0; start < stepFrames; start += block)
                process({sections.data(), count, stepFrames, start}, result.left.data() + start,
                        result.right.data() + start, std::min(block, stepFrames - start));
            for (std::size_t i = 0; i < count; ++i)
                for (const SectionState &state : {left[i], right[i]})
                    result.left.insert(result.left.end(), {state.first, state.second});
            return result;
        };
        const Stereo expected = moved(processMovingPlainly, stepFrames);
        for (const std::uint32_t block : {16U, 5U, 1U})
            EXPECT_EQ(moved(processMoving, block), expected)
                << count << " sections in blocks of " << block;
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, SectionCascadeOnTarget,
                         ::testing::ValuesIn(SectionCascadeOnTarget::compiled()),
                         SectionCascadeOnTarget::nameOf);

} // namespace
} // namespace quorbel
