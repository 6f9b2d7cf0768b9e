#pragma once

#include <cstdint>

namespace quorbel {

/// The work of the limiter on a short block of sound, on plain memory. All arrays of `count`
/// frames may be written up to `blockPadding` frames beyond, and `peaks` read as far.
struct LimiterBlock {
    const float *peaks = nullptr; ///< of `lookahead` frames before the block, then of the block
    std::uint32_t lookahead = 0;
    std::uint32_t count = 0;
    float threshold = 1.0F;   ///< linear
    float attackCoeff = 0.0F; ///< not below the release's
    float releaseCoeff = 0.0F;
    float *gains = nullptr; ///< room for the gain of every frame
    const float *delayedL = nullptr;
    const float *delayedR = nullptr;
    float *outL = nullptr; ///< exactly `count` frames are written
    float *outR = nullptr;
};

inline constexpr std::uint32_t blockPadding = 16;

/// Finds every frame's gain from the largest of its own and the `lookahead` peaks before it, and
/// applies it to the delayed sound. `gain` is the smoothed gain before and after; returned is the
/// smallest one. [render]
float limitBlock(const LimiterBlock &block, float &gain) noexcept;

/// The same written plainly, for comparison; the results are equal bit by bit.
float limitBlockPlainly(const LimiterBlock &block, float &gain) noexcept;

} // namespace quorbel
