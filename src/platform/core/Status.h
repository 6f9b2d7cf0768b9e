#pragma once

#include <cstdint>

namespace quorbel {

/// Result of a platform call: 0 for success, otherwise a code shown in decimal in error texts. The
/// sound server's failures are negative errno values.
using Status = std::int32_t;

inline constexpr Status statusOK = 0;

/// Rendering without a connected input.
inline constexpr Status statusNoConnection = -10876;

} // namespace quorbel
