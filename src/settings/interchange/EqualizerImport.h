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

/// Number of bands that the equaliser plays.
inline constexpr std::size_t equalizerBandCount = 10;

/// Appends flat peaks until there are ten bands, because a shorter list would leave bands of the
/// previous settings active. Their frequencies are the octaves farthest from the existing bands,
/// where the user can use them best.
void fillWithFlatBands(std::vector<EQBand> &bands);

/// A parametric equaliser text as a preset of the user's.
struct EqualizerImport {
    /// Exactly ten bands in the order of their frequencies. A shorter list would leave bands of the
    /// previous preset active, so missing bands are flat. Every other setting is at its default,
    /// which is off.
    Preset preset;

    /// The preamp; none where the text has none. The preset's record has no place for it.
    std::optional<float> gainDB;

    std::size_t takenFilters = 0;     ///< of the text, OFF and flat ones included
    std::optional<ResponseError> fit; ///< where more than ten were taken
    std::vector<LineNote> skipped;    ///< lines without effect on the preset, by line
    std::vector<LineNote> limited;    ///< values beyond what the equaliser plays, by line
};

/// Reads a parametric equaliser text (see readEqualizerText). Up to ten filters become bands with
/// the exact values of the text. Of more, filters without effect are left out first; if that is not
/// enough, all active ones are fitted onto ten. `name` is trimmed of blanks. Throws
/// InterchangeError, also for an empty name.
[[nodiscard]] EqualizerImport importEqualizerText(std::string_view bytes, std::string_view name);

} // namespace quorbel
