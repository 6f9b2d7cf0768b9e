// Compares the vectorised kernels with plain versions.

#include "effects/UnitHarness.h"
#include "effects/cores/CrossfeedBlock.h"
#include "effects/cores/EnhancerPass.h"
#include "effects/cores/Leveller.h"
#include "effects/cores/LimiterBlock.h"
#include "effects/cores/Saturation.h"
#include "effects/cores/TanhShaper.h"
#include "support/EveryVectorTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace quorbel {
namespace {

constexpr std::uint32_t longest = 70;

class VectorKernelsTest : public EveryVectorTarget {};

TEST_P(VectorKernelsTest, LimiterBlockIsEqualBitByBit) {
    for (const std::uint32_t lookahead : {8U, 57U, 62U, 500U}) {
        float vectorGain = 1.0F;
        float plainGain = 1.0F;
        const auto compare = [&](std::uint32_t count, float threshold) {
            const Stereo sound = noise(lookahead + longest + blockPadding, 1.5F, count);
            std::vector<float> peaks(sound.frames());
            for (std::size_t i = 0; i < peaks.size(); ++i)
                peaks[i] = std::max(std::abs(sound.left[i]), std::abs(sound.right[i]));
            std::vector<float> gains(longest + blockPadding);
            Stereo vectorOut(longest);
            Stereo plainOut(longest);
            LimiterBlock block{.peaks = peaks.data(),
                               .lookahead = lookahead,
                               .count = count,
                               .threshold = threshold,
                               .attackCoeff = 0.06F,
                               .releaseCoeff = 0.004F,
                               .gains = gains.data(),
                               .delayedL = sound.left.data(),
                               .delayedR = sound.right.data(),
                               .outL = vectorOut.left.data(),
                               .outR = vectorOut.right.data()};
            const float smallest = limitBlock(block, vectorGain);
            block.outL = plainOut.left.data();
            block.outR = plainOut.right.data();
            ASSERT_EQ(smallest, limitBlockPlainly(block, plainGain));
            ASSERT_EQ(vectorGain, plainGain);
            ASSERT_EQ(vectorOut, plainOut) << count << " frames, look-ahead " << lookahead;
        };
        for (std::uint32_t count = 1; count <= longest; ++count)
            compare(count, 0.05F * static_cast<float>(count));
        // Releases until the gain's steps round to zero.
        for (std::uint32_t again = 0; again < 60; ++again)
            compare(longest - again % 20, 2.0F);
    }
}

/// States of the stages of an EnhancerPass.
struct EnhancerStages {
    BassSections bass;
    VoiceSections voice;
    BiquadState side;
    std::vector<float> mono = std::vector<float>(200);

    EnhancerPass pass(bool hasBass, bool hasVoice, bool hasSide, std::uint32_t frames) {
        EnhancerPass result{.bass = {.lowPass = lowPass(0.01F, 0.007F),
                                     .highPass = highPass(0.015F, 0.0105F),
                                     .drive = 3.0F,
                                     .wet = 0.9F,
                                     .total = 1.4F},
                            .voice = {.mud = peaking(0.039F, 0.02F, 0.86F),
                                      .presence = peaking(0.39F, 0.16F, 1.2F),
                                      .mix = 0.7F},
                            .width = LinearRamp(1.3F, frames % 3 == 0 ? 0.4F : 1.3F, frames),
                            .dip = {.sideGain = 1.25F, .coefficients = peaking(0.26F, 0.1F, 0.8F)}};
        result.bassSections = hasBass ? &bass : nullptr;
        result.bassMono = hasBass ? mono.data() : nullptr;
        result.voiceSections = hasVoice ? &voice : nullptr;
        result.side = hasSide ? &side : nullptr;
        return result;
    }
};

// Vectorised evaluation of the sections rounds exactly as serial evaluation does.
TEST_P(VectorKernelsTest, EnhancersAreEqualBitByBit) {
    for (unsigned stages = 1; stages < 8; ++stages) {
        EnhancerStages vector;
        EnhancerStages plain;
        for (std::uint32_t count = 0; count <= 180; ++count) {
            const auto passOf = [&](EnhancerStages &s) {
                return s.pass((stages & 1U) != 0, (stages & 2U) != 0, (stages & 4U) != 0, count);
            };
            Stereo vectorSound = noise(count, 0.9F, count + 1);
            Stereo plainSound = vectorSound;
            enhance(passOf(vector), vectorSound.left.data(), vectorSound.right.data(), count);
            enhancePlainly(passOf(plain), plainSound.left.data(), plainSound.right.data(), count);
            ASSERT_EQ(vectorSound, plainSound) << count << " frames, stages " << stages;
            ASSERT_EQ(vector.mono, plain.mono) << count << " frames, stages " << stages;
        }
    }
}

TEST_P(VectorKernelsTest, LevellerIsEqualBitByBit) {
    const LevellerSettings settings{.keepLevel = 0.995F,
                                    .keepGain = 0.999F,
                                    .keepTrim = 0.97F,
                                    .target = 0.16F,
                                    .trimTarget = 1.4F};
    LevellerState state;
    LevellerState plainState;
    for (std::uint32_t count = 0; count <= longest; ++count) {
        // Crosses the gate in both directions.
        Stereo vector = noise(count, count % 20 < 10 ? 0.5F : 1e-4F, count + 1);
        Stereo plain = vector;
        runLeveller(settings, state, vector.left.data(), vector.right.data(), count);
        runLevellerPlainly(settings, plainState, plain.left.data(), plain.right.data(), count);
        ASSERT_EQ(vector, plain) << count << " frames";
        ASSERT_EQ(state.gain, plainState.gain);
    }
}

TEST_P(VectorKernelsTest, CrossfeedAndLevellerInOnePassAreEqualBitByBit) {
    const LevellerSettings settings{.keepLevel = 0.995F,
                                    .keepGain = 0.999F,
                                    .keepTrim = 0.97F,
                                    .target = 0.16F,
                                    .trimTarget = 1.4F};
    CrossfeedCore core;
    CrossfeedCore plainCore;
    LevellerState state;
    LevellerState plainState;
    for (std::uint32_t count = 0; count <= 300; ++count) {
        Stereo joint = noise(count, count % 20 < 10 ? 0.5F : 1e-4F, count + 1);
        Stereo plain = joint;
        const float previous = count % 3 == 0 ? 0.2F : 0.6F;
        CrossfeedBlock block(core, joint.left.data(), joint.right.data(), count, previous, 0.6F);
        runCrossfedLeveller(block, settings, state, joint.left.data(), joint.right.data(), count);
        plainCore.process(plain.left.data(), plain.right.data(), count, previous, 0.6F);
        runLevellerPlainly(settings, plainState, plain.left.data(), plain.right.data(), count);
        ASSERT_EQ(joint, plain) << count << " frames";
        ASSERT_EQ(state.gain, plainState.gain);
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, VectorKernelsTest,
                         ::testing::ValuesIn(VectorKernelsTest::compiled()),
                         VectorKernelsTest::nameOf);

} // namespace
} // namespace quorbel
