#pragma once

#include <cstdint>

namespace quorbel {

/// Arguments of the limiter for a short block. It may write arrays of `count` frames, and read
/// `peaks`, up to `blockPadding` frames beyond their end.
struct LimiterBlock {
    const float *peaks = nullptr; ///< of `lookahead` frames before the block, then of the block
    std::uint32_t lookahead = 0;
    std::uint32_t count = 0;
    float threshold = 1.0F;   ///< linear
    float attackCoeff = 0.0F; ///< at least the release's
    float releaseCoeff = 0.0F;
    float *gains = nullptr; ///< scratch: gain of every frame
    const float *delayedL = nullptr;
    const float *delayedR = nullptr;
    float *outL = nullptr; ///< exactly `count` frames are written
    float *outR = nullptr;
};

inline constexpr std::uint32_t blockPadding = 16;

/// Computes each frame's gain from the largest of its peak and the `lookahead` peaks before it, and
/// applies it to the delayed sound. `gain` carries the smoothed gain between blocks. Returns the
/// smallest gain. [render]
float limitBlock(const LimiterBlock &block, float &gain) noexcept;

/// Plain version, as a reference; the results are bit-identical.
float limitBlockPlainly(const LimiterBlock &block, float &gain) noexcept;

} // namespace quorbel
