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

/// The Q of a shelf or pass that gives none: the steepest that does not overshoot (Butterworth).
inline constexpr float defaultSlopeQ = 0.70710678F;

struct TextBand {
    EQBand band;
    std::size_t line = 0; ///< from 1
};

/// A parametric equaliser text as it was read.
struct EqualizerText {
    std::vector<TextBand> bands;   ///< in the order of the lines; OFF filters are bypassed bands
    std::optional<float> preampDB; ///< the sum of all preamp lines; none without such a line
    std::vector<LineNote> skipped; ///< lines that were not taken
    std::vector<LineNote> limited; ///< taken as written, but beyond what the equaliser plays
};

/// Reads the text format that headphone equalisation collections and room measurement programs
/// write:
///
///     Preamp: -6.2 dB
///     Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.70
///
/// Types PK, LS and LSC, HS and HSC, LP and LPQ, HP and HPQ. `bytes` in any encoding (see
/// utf8FromText), any line breaks. Comments and empty lines are passed over, other lines that are
/// not understood are skipped whole, with the reason. Filters for one channel only are skipped.
///
/// Throws InterchangeError for a text that is too large or not text, exceeds the maximum of filters
/// or skipped lines, or has neither a filter nor a preamp.
[[nodiscard]] EqualizerText readEqualizerText(std::string_view bytes);

/// The bands and the gain as such a text. Numbers are the shortest decimals that read back as the
/// same 32-bit values. Reading gives the same bands but for their ids and the gain of passes, which
/// has no effect. A frequency or Q of 0 or less means nothing in the format and is written as it is
/// played (1 Hz, 0.1). Throws InterchangeError, with the number of the band in the reason, for a
/// value that is not finite.
[[nodiscard]] std::string writeEqualizerText(const std::vector<EQBand> &bands, float preampDB);

} // namespace quorbel
