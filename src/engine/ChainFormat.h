#pragma once

#include "platform/core/StreamFormat.h"

namespace quorbel {

/// The format of the ring buffer and of every stage up to the main mixer.
inline constexpr StreamFormat chainFormat{.sampleRate = chainSampleRate, .channelCount = 2};

/// Largest difference between equal rates that were read with different precision.
inline constexpr double sampleRateTolerance = 0.5; // Hz

} // namespace quorbel
