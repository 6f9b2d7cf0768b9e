#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>

namespace quorbel {

/// Replaces NaN and infinite samples by zero, because they would never leave a recursive filter.
/// Includes samples of at least 2^40 (240 dB above full scale), which later stages could square or
/// amplify to infinity. Returns the number of affected frames. [any]
std::uint32_t replaceNonFinite(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

} // namespace quorbel
