#include "equalizer/StateVariableSection.h"

#include <cmath>
#include <numbers>

namespace quorbel {

StateVariableDesign StateVariableDesign::fromBiquad(double b0, double b1, double b2, double a1,
                                                    double a2) {
    // 1/z = (1 - σ) / (1 + σ) turns both polynomials into ones in σ = j tan(π f / sampleRate).
    const double low = 1.0 + a1 + a2;
    const double high = 1.0 - a1 + a2;
    const double cutoff = std::sqrt(low / high);
    return {.cutoff = cutoff,
            .damping = 2.0 * (1.0 - a2) / std::sqrt(low * high),
            .high = (b0 - b1 + b2) / high,
            .band = 2.0 * (b0 - b2) * cutoff / low,
            .low = (b0 + b1 + b2) / low};
}

double StateVariableDesign::power(double normalizedFrequency) const {
    const double w = std::tan(std::numbers::pi * normalizedFrequency) / cutoff;
    const double numerator = std::pow(low - high * w * w, 2) + std::pow(band * w, 2);
    const double denominator = std::pow(1.0 - w * w, 2) + std::pow(damping * w, 2);
    return numerator / denominator;
}

} // namespace quorbel
