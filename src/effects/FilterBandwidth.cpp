#include "effects/FilterBandwidth.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

float bandwidthOctaves(float q) {
    constexpr double smallestQ = 0.1;
    constexpr double octavesPerUnit = 2.8853900817779268; // 2 / ln 2
    // NaN fails the comparison and takes the second branch.
    const double usedQ = q > 0.1F ? static_cast<double>(q) : smallestQ;
    const auto octaves = static_cast<float>(octavesPerUnit * std::asinh(1.0 / (2.0 * usedQ)));
    return std::clamp(octaves, 0.05F, 5.0F);
}

} // namespace quorbel
