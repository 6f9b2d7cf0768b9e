#pragma once

#include "settings/records/Preset.h"

#include <map>
#include <string_view>
#include <vector>

namespace quorbel {

/// The presets that ship with the program, in the order of lists. Built at the first call, then
/// shared.
[[nodiscard]] const std::vector<Preset> &factoryPresets();

/// The id of a factory preset: a name-based UUID (version 5 in form, but made with SHA-256). A
/// preset has the same id at every launch and in every version with its name.
[[nodiscard]] Uuid stableFactoryID(std::string_view key);

/// The ten bands of a factory preset from its gains in dB, 31.5 Hz to 16 kHz; any other number of
/// gains ends the program. Q by band index where given, otherwise 0.7 for the outer shelves and 1
/// for the peaks.
[[nodiscard]] std::vector<EQBand> bands(const std::vector<float> &gains,
                                        const std::map<std::size_t, float> &qOverrides);

/// The presets that ship with the program as they were tuned; ids and dates are still to be set.
[[nodiscard]] std::vector<Preset> factoryLibrary();

} // namespace quorbel
