#pragma once

#include "settings/records/EQBand.h"

#include <cstddef>
#include <vector>

namespace quorbel {

/// Difference of two responses over 20 Hz to 20 kHz on a logarithmic scale. Levels below -60 dB
/// count as equal.
struct ResponseError {
    double rmsDB = 0.0;
    double maximumDB = 0.0;
};

[[nodiscard]] ResponseError responseError(const std::vector<EQBand> &bands,
                                          const std::vector<EQBand> &reference);

struct BandFit {
    std::vector<EQBand> bands; ///< by frequency, with values of three or four digits
    ResponseError error;       ///< of these rounded bands
};

/// Fits `count` bands (1 or more) to the response of more `bands`, by least squares of the
/// difference in dB. Uses only the given band types.
///
/// Starts from the 32 strongest bands at most. Repeatedly removes the band that leaves the smallest
/// error and refits the others (Levenberg-Marquardt over frequency, gain and Q). Takes a few tenths
/// of a second.
[[nodiscard]] BandFit fitBands(const std::vector<EQBand> &bands, std::size_t count);

} // namespace quorbel
