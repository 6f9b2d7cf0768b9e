#pragma once

#include "settings/records/EQBand.h"

#include <cstddef>
#include <vector>

namespace quorbel {

/// How many bands the equaliser plays.
inline constexpr std::size_t equalizerBandCount = 10;

/// Appends flat peaks until there are ten bands, because a shorter list would leave bands of the
/// settings before it in force. They stand at the octave frequencies that are farthest from the
/// bands already there, where they are of most use to whoever goes on from here.
void fillWithFlatBands(std::vector<EQBand> &bands);

} // namespace quorbel
