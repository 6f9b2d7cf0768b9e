#include "equalizer/StateVariableSection.h"

#include <cmath>
#include <numbers>

namespace quorbel {

double StateVariableDesign::power(double normalizedFrequency) const {
    const double w = std::tan(std::numbers::pi * normalizedFrequency) / cutoff;
    const double numerator = std::pow(low - high * w * w, 2) + std::pow(band * w, 2);
    const double denominator = std::pow(1.0 - w * w, 2) + std::pow(damping * w, 2);
    return numerator / denominator;
}

} // namespace quorbel
