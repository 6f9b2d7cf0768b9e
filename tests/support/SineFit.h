#pragma once

#include <span>

#include <cmath>
#include <numbers>

namespace quorbel {

/// Least-squares fit of a sine of known frequency to a sound.
struct SineFit {
    double amplitude = 0.0;
    double residual = 0.0; ///< RMS of the sound without the sine

    /// Residual in dB relative to the sine's RMS.
    [[nodiscard]] double residualDB() const {
        return 20.0 * std::log10(residual * std::numbers::sqrt2 / amplitude);
    }

    [[nodiscard]] static SineFit of(std::span<const float> samples, double hertz,
                                    double sampleRate) {
        const double step = 2.0 * std::numbers::pi * hertz / sampleRate;
        double ss = 0.0, sc = 0.0, cc = 0.0, sx = 0.0, cx = 0.0;
        for (std::size_t n = 0; n < samples.size(); ++n) {
            const double s = std::sin(step * static_cast<double>(n));
            const double c = std::cos(step * static_cast<double>(n));
            ss += s * s;
            sc += s * c;
            cc += c * c;
            sx += s * double{samples[n]};
            cx += c * double{samples[n]};
        }
        const double determinant = ss * cc - sc * sc;
        const double a = (sx * cc - cx * sc) / determinant;
        const double b = (cx * ss - sx * sc) / determinant;
        double squares = 0.0;
        for (std::size_t n = 0; n < samples.size(); ++n) {
            const double phase = step * static_cast<double>(n);
            squares += std::pow(double{samples[n]} - a * std::sin(phase) - b * std::cos(phase), 2);
        }
        return {std::hypot(a, b), std::sqrt(squares / static_cast<double>(samples.size()))};
    }
};

} // namespace quorbel
