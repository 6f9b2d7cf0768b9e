#pragma once

#include "settings/records/EQBand.h"

#include <cstddef>
#include <vector>

namespace quorbel {

/// How far two responses are apart, over 20 Hz to 20 kHz on a logarithmic scale. What is below
/// -60 dB in both counts as equal.
struct ResponseError {
    double rmsDB = 0.0;
    double maximumDB = 0.0;
};

[[nodiscard]] ResponseError responseError(const std::vector<EQBand> &bands,
                                          const std::vector<EQBand> &reference);

struct BandFit {
    std::vector<EQBand> bands; ///< by frequency, with values of three or four digits
    ResponseError error;       ///< of exactly these bands
};

/// `count` bands (1 or more) whose response comes near that of `bands`, which are more: least
/// squares of the difference in dB. Which band types are used follows from the given ones.
///
/// Starts from all bands, of which one after another is taken away where it is missed least while
/// the others move to take over its part (Levenberg-Marquardt over frequency, gain and Q). Of more
/// than 32 bands, the 32 strongest are started from. Takes a few tenths of a second.
[[nodiscard]] BandFit fitBands(const std::vector<EQBand> &bands, std::size_t count);

} // namespace quorbel
