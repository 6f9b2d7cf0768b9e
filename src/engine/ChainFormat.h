#pragma once

#include "platform/core/StreamFormat.h"

namespace quorbel {

/// What runs through the ring buffer and every stage up to the main mixer.
inline constexpr double chainSampleRate = 48000.0; // Hz
inline constexpr StreamFormat chainFormat{.sampleRate = chainSampleRate, .channelCount = 2};

/// Rates that differ by less are one and the same, read with different precision.
inline constexpr double sampleRateTolerance = 0.5; // Hz

} // namespace quorbel
