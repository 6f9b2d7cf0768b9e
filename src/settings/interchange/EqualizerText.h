#pragma once

#include "settings/interchange/InterchangeError.h"
#include "settings/records/EQBand.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

inline constexpr std::size_t maximumEqualizerTextBytes = std::size_t{1} << 20U;
inline constexpr std::size_t maximumFilters = 1000;
inline constexpr std::size_t maximumSkippedLines = 1000;

/// The Q of a shelf or pass without one: the steepest without overshoot (Butterworth).
inline constexpr float defaultSlopeQ = 0.70710678F;

struct TextBand {
    EQBand band;
    std::size_t line = 0; ///< from 1
};

/// The content of a parametric equaliser text.
struct EqualizerText {
    std::vector<TextBand> bands;   ///< in the order of the lines; OFF filters are bypassed bands
    std::optional<float> preampDB; ///< sum of all preamp lines; none without such a line
    std::vector<LineNote> skipped; ///< rejected lines
    std::vector<LineNote> limited; ///< accepted values beyond the equaliser's range
};

/// Reads the text format of headphone equalisation collections and room measurement programs:
///
///     Preamp: -6.2 dB
///     Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70
///
/// Types are PK, LS and LSC, HS and HSC, LP and LPQ, HP and HPQ. `bytes` has any encoding (see
/// utf8FromText) and any line breaks. Ignores comments and empty lines; skips invalid lines and
/// filters for a single channel with the reason.
///
/// Throws InterchangeError if the text is too large or not text, has too many filters or skipped
/// lines, or neither a filter nor a preamp.
[[nodiscard]] EqualizerText readEqualizerText(std::string_view bytes);

/// Writes the bands and the gain in this format. Numbers are the shortest decimals that read back
/// as the same 32-bit values; only ids and the unused gain of passes are lost. Writes a frequency
/// or Q of 0 or less, invalid in the format, as it is played (1 Hz, 0.1). Throws InterchangeError
/// with the band's number for a value that is not finite.
[[nodiscard]] std::string writeEqualizerText(const std::vector<EQBand> &bands, float preampDB);

} // namespace quorbel
