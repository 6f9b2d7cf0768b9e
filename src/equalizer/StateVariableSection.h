#pragma once

namespace quorbel {

/// Designed second-order section: the state-variable filter
///
///     H = (high s² + band s + low) / (s² + damping s + 1),   s = j tan(π f / sampleRate) / cutoff,
///
/// Every stable biquad has this form.
struct StateVariableDesign {
    double cutoff = 1.0;  ///< tan(π f0 / sampleRate), > 0
    double damping = 1.0; ///< 1/Q of the poles, > 0
    double high = 1.0;    ///< gain at half the sample rate
    double band = 1.0;
    double low = 1.0; ///< gain at 0 Hz

    /// |H|² at a frequency given as a fraction of the sample rate, 0 to 0.5 (excluded).
    [[nodiscard]] double power(double normalizedFrequency) const;
};

/// State of one section for one channel: its two integrators.
struct SectionState {
    float first = 0.0F;
    float second = 0.0F;
};

/// Coefficients of a section in 32 bits, for trapezoidal integrators (V. Zavalishin, "The Art of VA
/// Filter Design", 3.10) that add increments to their states. At low frequencies the increments and
/// their rounding errors are small, while a 32-bit direct form loses half of its digits.
struct SectionCoefficients {
    float cutoff = 1.0F;   ///< g
    float feedback = 2.0F; ///< g + damping
    float scale = 0.25F;   ///< g / (1 + g (g + damping)), derived by `close`
    float direct = 1.0F; ///< the output is direct · input + first · bandpass + second · lowpass
    float first = 0.0F;
    float second = 0.0F;

    SectionCoefficients() = default;
    explicit SectionCoefficients(const StateVariableDesign &design)
        : cutoff(static_cast<float>(design.cutoff)),
          feedback(static_cast<float>(design.cutoff + design.damping)),
          scale(static_cast<float>(design.cutoff /
                                   (1.0 + design.cutoff * (design.cutoff + design.damping)))),
          direct(static_cast<float>(design.high)),
          first(static_cast<float>(design.band - design.damping * design.high)),
          second(static_cast<float>(design.low - design.high)) {}

    /// Derives `scale` from interpolated `cutoff` and `feedback`.
    void close() noexcept { scale = cutoff / (1.0F + cutoff * feedback); }
};

/// Runs one sample through one section.
inline float processSample(const SectionCoefficients &c, SectionState &state,
                           float input) noexcept {
    const float drive = c.scale * ((input - c.feedback * state.first) - state.second);
    const float bandpass = state.first + drive;
    const float rise = c.cutoff * bandpass;
    const float lowpass = state.second + rise;
    state.first = bandpass + drive;
    state.second = lowpass + rise;
    return (c.direct * input + c.first * bandpass) + c.second * lowpass;
}

} // namespace quorbel
