#pragma once

#include <cstdint>

namespace quorbel {

/// How fast the leveller and the trim move, and where to; all linear. A smoother keeps so much of
/// itself per frame.
struct Levelling {
    float keepLevel = 0.0F;
    float keepGain = 0.0F;
    float keepTrim = 0.0F;
    float target = 1.0F;     ///< the level wanted, RMS
    float trimTarget = 1.0F; ///< where the trim goes
};

/// Where they stand.
struct LevellingState {
    float meanSquare = 0.0F;
    float gain = 1.0F;
    float trim = 1.0F;
};

/// Measures the level, moves gain and trim, applies both, in place. [render]
void level(const Levelling &levelling, LevellingState &state, float *left, float *right,
           std::uint32_t frames) noexcept;

/// The same written plainly, for comparison and for the rest of a block; the results are equal bit
/// by bit.
void levelPlainly(const Levelling &levelling, LevellingState &state, float *left, float *right,
                  std::uint32_t frames) noexcept;

} // namespace quorbel
