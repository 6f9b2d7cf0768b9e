#pragma once

#include <cstddef>
#include <vector>

namespace quorbel {

/// The periodic Hann window of `points` points, normalised so that windowed noise keeps its power:
/// 0.8165 · (1 - cos(2πn/N)), 0.8165 being √(2/3).
[[nodiscard]] std::vector<float> normalisedHannWindow(std::size_t points);

} // namespace quorbel
