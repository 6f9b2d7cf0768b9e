#pragma once

namespace quorbel {

/// Coefficients of a second-order section, normalised to a0 = 1.
struct BiquadCoefficients {
    float b0 = 1.0F;
    float b1 = 0.0F;
    float b2 = 0.0F;
    float a1 = 0.0F;
    float a2 = 0.0F;
};

/// State in direct form I: the last two inputs and outputs. Copy it into a local for a block.
struct BiquadState {
    float x1 = 0.0F;
    float x2 = 0.0F;
    float y1 = 0.0F;
    float y2 = 0.0F;

    float process(const BiquadCoefficients &c, float x) noexcept {
        const float y = c.b0 * x + c.b1 * x1 + c.b2 * x2 - c.a1 * y1 - c.a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

// Designs after the audio-EQ cookbook (R. Bristow-Johnson), computed in 32 bits; `w0` is the
// angular frequency in radians per frame, `alpha` the cookbook's.

[[nodiscard]] BiquadCoefficients lowPass(float w0, float alpha) noexcept;
[[nodiscard]] BiquadCoefficients highPass(float w0, float alpha) noexcept;

/// `amplitude` is 10^(gain in dB / 40).
[[nodiscard]] BiquadCoefficients peaking(float w0, float alpha, float amplitude) noexcept;

} // namespace quorbel
