#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>

namespace quorbel {

/// Replaces NaN and infinite samples by zero, because they would stay in a recursive filter for
/// ever. Samples of at least 2^40 (240 dB above full scale) are replaced too: they would become
/// infinite in the first stage that squares or amplifies them. Returns the number of affected
/// frames. [any]
std::uint32_t replaceNonFinite(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

} // namespace quorbel
