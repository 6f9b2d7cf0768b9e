#pragma once

#include "effects/cores/LinearRamp.h"

#include <cstdint>

namespace quorbel {

/// Scales the side (difference) signal against the mid (sum) signal in place: width 0 is mono, 1
/// changes nothing but rounding, 2 doubles the side. `begin` is the ramp's frame for the first
/// sample. [render]
void widen(float *left, float *right, std::uint32_t frames, const LinearRamp &width,
           std::uint32_t begin = 0) noexcept;

} // namespace quorbel
