#pragma once

#include <cstdint>

namespace quorbel {

/// What a platform call returns: 0 for success, otherwise a code that reaches the user's error
/// texts unchanged, in decimal. The sound server's failures are negative errno values.
using Status = std::int32_t;

inline constexpr Status statusOK = 0;

/// A unit was asked to render without anything connected to its input.
inline constexpr Status statusNoConnection = -10876;

} // namespace quorbel
