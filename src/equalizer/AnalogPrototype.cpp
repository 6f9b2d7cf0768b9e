#include "equalizer/AnalogPrototype.h"

#include <cmath>
#include <numbers>

namespace quorbel {

AnalogPrototype AnalogPrototype::of(EqualizerFilterType type, double gainDB, double q) {
    const double a = std::pow(10.0, gainDB / 40.0);
    const double rootA = std::sqrt(a);
    switch (type) {
    case EqualizerFilterType::parametric:
        return {.n0 = 1.0, .n1 = a / q, .n2 = 1.0, .d0 = 1.0, .d1 = 1.0 / (a * q), .d2 = 1.0};
    case EqualizerFilterType::lowShelf:
        return {.n0 = a * a, .n1 = a * rootA / q, .n2 = a, .d0 = 1.0, .d1 = rootA / q, .d2 = a};
    case EqualizerFilterType::highShelf:
        return {.n0 = a, .n1 = a * rootA / q, .n2 = a * a, .d0 = a, .d1 = rootA / q, .d2 = 1.0};
    case EqualizerFilterType::lowPass:
        return {.n0 = 1.0, .n1 = 0.0, .n2 = 0.0, .d0 = 1.0, .d1 = 1.0 / q, .d2 = 1.0};
    case EqualizerFilterType::highPass:
        return {.n0 = 0.0, .n1 = 0.0, .n2 = 1.0, .d0 = 1.0, .d1 = 1.0 / q, .d2 = 1.0};
    }
    return {};
}

double AnalogPrototype::power(double relativeFrequency) const {
    const double w = relativeFrequency;
    const double numerator = std::pow(n0 - n2 * w * w, 2) + std::pow(n1 * w, 2);
    const double denominator = std::pow(d0 - d2 * w * w, 2) + std::pow(d1 * w, 2);
    return numerator / denominator;
}

double qualityFromBandwidth(double octaves) {
    return 1.0 / (2.0 * std::sinh(std::numbers::ln2 / 2.0 * octaves));
}

} // namespace quorbel
