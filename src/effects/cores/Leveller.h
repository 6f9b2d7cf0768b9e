#pragma once

#include <cstdint>

namespace quorbel {

class CrossfeedBlock;

/// Smoothing coefficients (`keep...`, per frame) and targets of the auto gain's leveller and trim,
/// linear.
struct LevellerSettings {
    float keepLevel = 0.0F;
    float keepGain = 0.0F;
    float keepTrim = 0.0F;
    float target = 1.0F;     ///< wanted level, RMS
    float trimTarget = 1.0F; ///< final value of the trim
};

/// The smoothers' values.
struct LevellerState {
    float meanSquare = 0.0F;
    float gain = 1.0F;
    float trim = 1.0F;
};

/// Measures the level, moves gain and trim, and applies both in place. [render]
void runLeveller(const LevellerSettings &settings, LevellerState &state, float *left, float *right,
                 std::uint32_t frames) noexcept;

/// Finishes `crossfeed`, which is at the start of the same block, and levels its output. Both are
/// latency-bound, so one pass overlaps them; the results are bit-identical to two passes. [render]
void runCrossfedLeveller(CrossfeedBlock &crossfeed, const LevellerSettings &settings,
                         LevellerState &state, float *left, float *right,
                         std::uint32_t frames) noexcept;

/// Plain version, as a reference and for the rest of a block; the results are bit-identical.
void runLevellerPlainly(const LevellerSettings &settings, LevellerState &state, float *left,
                        float *right, std::uint32_t frames) noexcept;

} // namespace quorbel
