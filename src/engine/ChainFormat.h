#pragma once

#include "platform/core/StreamFormat.h"

namespace quorbel {

/// The format of the ring buffer and of every stage up to the main mixer.
inline constexpr double chainSampleRate = 48000.0; // Hz
inline constexpr StreamFormat chainFormat{.sampleRate = chainSampleRate, .channelCount = 2};

/// Rates that differ by less are equal, read with different precision.
inline constexpr double sampleRateTolerance = 0.5; // Hz

} // namespace quorbel
