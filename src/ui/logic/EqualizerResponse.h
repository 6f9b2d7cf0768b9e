#pragma once

#include "platform/graph/ParametricEqualizerNode.h"

#include <cstddef>
#include <vector>

namespace quorbel {

/// What the bands of the equaliser node play: the magnitude in dB of the very sections that it runs
/// at `sampleRate` Hz, without its global gain, at `pointCount` (2 or more) frequencies from 20 Hz
/// to 20 kHz in equal ratios. Not below -200.
[[nodiscard]] std::vector<double> equalizerResponseDB(const ParametricEqualizerNode &node,
                                                      double sampleRate, std::size_t pointCount);

} // namespace quorbel
