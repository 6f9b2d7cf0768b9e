#pragma once

#include <cstdint>

namespace quorbel {

/// Result of a platform call: 0 for success, otherwise a code that the user's error texts show in
/// decimal. The sound server's failures are negative errno values.
using Status = std::int32_t;

inline constexpr Status statusOK = 0;

/// A unit was asked to render without anything connected to its input.
inline constexpr Status statusNoConnection = -10876;

} // namespace quorbel
