#include "platform/dsp/HannWindow.h"

#include <cmath>
#include <numbers>

namespace quorbel {

std::vector<float> normalisedHannWindow(std::size_t points) {
    std::vector<float> window(points);
    for (std::size_t n = 0; n < points; ++n) {
        const double phase =
            2.0 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(points);
        window[n] = static_cast<float>(0.8165 * (1.0 - std::cos(phase)));
    }
    return window;
}

} // namespace quorbel
