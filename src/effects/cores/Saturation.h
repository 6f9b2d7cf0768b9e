#pragma once

#include "effects/cores/LinearRamp.h"

#include <cstdint>

namespace quorbel {

/// Blends in a tanh-shaped copy in place: x·(1 − d/2) + d·tanh(kx)/k with k = 1 + 3d, for a drive d
/// of 0 to 1. Small signals gain 1 + d/2; the shaped part exceeds d/k by rounding at most. [render]
void saturate(float *left, float *right, std::uint32_t frames, const LinearRamp &drive) noexcept;

/// Plain version, as a reference.
void saturatePlainly(float *left, float *right, std::uint32_t frames,
                     const LinearRamp &drive) noexcept;

} // namespace quorbel
