#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>

namespace quorbel {

/// Replaces samples that are not a number or infinite by zero: in a recursive filter they would
/// stay for ever. So are samples of 2^40 (240 dB above full scale) and more, which are rubbish too
/// and would become infinite in the first stage that squares or amplifies them. Returns the number
/// of frames in which it found any. [any]
std::uint32_t replaceNonFinite(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

} // namespace quorbel
