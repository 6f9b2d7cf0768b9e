#pragma once

#include <cstdint>

namespace quorbel {

/// Replaces every sample x by tanh(drive · x) / drive. [render]
void shapeByTanh(float *samples, std::uint32_t frames, float drive) noexcept;

} // namespace quorbel
