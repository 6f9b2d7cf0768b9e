#pragma once

#include "settings/records/EQBand.h"

#include <cstddef>
#include <vector>

namespace quorbel {

/// Difference of two responses over 20 Hz to 20 kHz on a logarithmic scale. Values below -60 dB in
/// both count as equal.
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
/// Starts from all bands, or the 32 strongest of more. Removes one band after another, each time
/// the one with the smallest error; the others move to take over its part (Levenberg-Marquardt over
/// frequency, gain and Q). Takes a few tenths of a second.
[[nodiscard]] BandFit fitBands(const std::vector<EQBand> &bands, std::size_t count);

} // namespace quorbel
