#pragma once

#include <span>

#include <cmath>
#include <numbers>

namespace quorbel {

/// The sine of a known frequency in a sound, as a least-squares fit over whole periods.
struct SineFit {
    double amplitude = 0.0;
    double residual = 0.0; ///< root mean square of what is left without it

    [[nodiscard]] static SineFit of(std::span<const float> samples, double hertz,
                                    double sampleRate) {
        const double periods = std::floor(static_cast<double>(samples.size()) * hertz / sampleRate);
        const auto frames =
            samples.first(static_cast<std::size_t>(std::round(periods * sampleRate / hertz)));
        const double step = 2.0 * std::numbers::pi * hertz / sampleRate;
        double sines = 0.0, cosines = 0.0, squares = 0.0, phase = 0.0;
        for (const float frame : frames) {
            sines += double{frame} * std::sin(phase);
            cosines += double{frame} * std::cos(phase);
            phase += step;
        }
        const double half = static_cast<double>(frames.size()) / 2.0;
        phase = 0.0;
        for (const float frame : frames) {
            const double rest =
                double{frame} - (sines * std::sin(phase) + cosines * std::cos(phase)) / half;
            squares += rest * rest;
            phase += step;
        }
        return {std::hypot(sines, cosines) / half, std::sqrt(squares / (2.0 * half))};
    }
};

} // namespace quorbel
