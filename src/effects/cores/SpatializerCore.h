#pragma once

#include "effects/cores/Biquad.h"
#include "effects/cores/Memoized.h"

#include <cstdint>

namespace quorbel {

/// Coefficients for one block: the side signal's gain, then its section.
struct SideDip {
    float sideGain = 1.0F;
    BiquadCoefficients coefficients;
};

/// Works in place. [render]
void spatialize(const SideDip &dip, BiquadState &side, float *left, float *right,
                std::uint32_t frames) noexcept;

/// Stereo shuffler: raises the side signal and carves a dip of up to 6 dB into it.
class SpatializerCore {
  public:
    /// `sampleRate` in Hz. Starts from silence. Not while processing.
    void prepare(float sampleRate) noexcept;

    /// Resets to silence.
    void clear() noexcept { side_ = {}; }

    /// `amount` 0 to 1; at 1 the side signal is 1.5 times as large. `notchHz` is the centre of the
    /// dip, clamped below half the sample rate. [render]
    [[nodiscard]] SideDip designed(float amount, float notchHz) noexcept;

    /// The side section's state.
    [[nodiscard]] BiquadState &side() noexcept { return side_; } ///< [render]

  private:
    float sampleRate_ = 48'000.0F;
    BiquadState side_;
    Memoized<BiquadCoefficients, float, float, float> dip_; ///< by amount, centre and sample rate
};

} // namespace quorbel
