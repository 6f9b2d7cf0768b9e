#pragma once

#include "settings/records/Preset.h"

#include <map>
#include <string_view>
#include <vector>

namespace quorbel {

/// The presets that ship with the program, in the order of lists. Built at the first call.
[[nodiscard]] const std::vector<Preset> &factoryPresets();

/// The id of a factory preset: a name-based UUID (marked as version 5, but made with SHA-256). It
/// depends only on the name, so it is the same at every launch and in every version.
[[nodiscard]] Uuid stableFactoryID(std::string_view key);

/// Makes the ten bands of a factory preset from gains in dB, 31.5 Hz to 16 kHz; aborts for another
/// number of gains. Q comes from `qOverrides` by band index, else 0.7 for shelves and 1 for peaks.
[[nodiscard]] std::vector<EQBand> bands(const std::vector<float> &gains,
                                        const std::map<std::size_t, float> &qOverrides);

/// The tuning of the factory presets, still without ids and dates.
[[nodiscard]] std::vector<Preset> factoryLibrary();

} // namespace quorbel
