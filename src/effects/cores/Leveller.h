#pragma once

#include <cstdint>

namespace quorbel {

/// Smoothing coefficients and targets of the auto gain's leveller and trim, linear. A smoother
/// keeps its coefficient's share of itself per frame.
struct LevellerSettings {
    float keepLevel = 0.0F;
    float keepGain = 0.0F;
    float keepTrim = 0.0F;
    float target = 1.0F;     ///< the level wanted, RMS
    float trimTarget = 1.0F; ///< where the trim goes
};

/// The smoothers' values.
struct LevellerState {
    float meanSquare = 0.0F;
    float gain = 1.0F;
    float trim = 1.0F;
};

/// Measures the level, moves gain and trim, applies both, in place. [render]
void runLeveller(const LevellerSettings &settings, LevellerState &state, float *left, float *right,
                 std::uint32_t frames) noexcept;

/// The same written plainly, for comparison and for the rest of a block; the results are equal bit
/// by bit.
void runLevellerPlainly(const LevellerSettings &settings, LevellerState &state, float *left,
                        float *right, std::uint32_t frames) noexcept;

} // namespace quorbel
