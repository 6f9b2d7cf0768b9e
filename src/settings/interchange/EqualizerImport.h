#pragma once

#include "settings/interchange/BandFit.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/records/Preset.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// Number of bands of the equaliser.
inline constexpr std::size_t equalizerBandCount = 10;

/// Appends flat peaks up to ten bands: a shorter list would leave bands of the previous settings
/// active. Places them at the octaves farthest from the existing bands, where they are most useful.
void fillWithFlatBands(std::vector<EQBand> &bands);

/// A user preset from a parametric equaliser text.
struct EqualizerImport {
    /// Exactly ten bands in the order of their frequencies; `fillWithFlatBands` adds missing ones.
    /// All other settings have their defaults, which are off.
    Preset preset;

    /// The preamp, which a preset cannot hold; none if the text has none.
    std::optional<float> gainDB;

    std::size_t takenFilters = 0;     ///< accepted filters, including OFF and flat ones
    std::optional<ResponseError> fit; ///< only with more than ten accepted filters
    std::vector<LineNote> skipped;    ///< lines without effect on the preset, by line
    std::vector<LineNote> limited;    ///< values beyond what the equaliser plays, by line
};

/// Reads a parametric equaliser text (see readEqualizerText). Up to ten filters become bands with
/// the exact values of the text. Drops filters without effect if there are more, then fits the
/// active ones to ten bands if needed. Trims `name`. Throws InterchangeError, also for an empty
/// name.
[[nodiscard]] EqualizerImport importEqualizerText(std::string_view bytes, std::string_view name);

} // namespace quorbel
