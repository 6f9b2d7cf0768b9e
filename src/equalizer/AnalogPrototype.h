#pragma once

#include "equalizer/EqualizerBandSettings.h"

namespace quorbel {

/// Analog second-order filter that an equaliser band imitates,
///
///     H(s) = (n2 s² + n1 s + n0) / (d2 s² + d1 s + d0),   s = j f/f0,
///
/// after the audio EQ cookbook (R. Bristow-Johnson), with A = 10^(gainDB/40).
struct AnalogPrototype {
    double n0 = 1.0;
    double n1 = 0.0;
    double n2 = 0.0;
    double d0 = 1.0;
    double d1 = 0.0;
    double d2 = 0.0;

    /// `gainDB` acts on parametric bands and shelves; `q` > 0.
    [[nodiscard]] static AnalogPrototype of(EqualizerFilterType type, double gainDB, double q);

    /// |H|² at `relativeFrequency` = f/f0.
    [[nodiscard]] double power(double relativeFrequency) const;
};

/// Returns the Q of a band `octaves` wide: 1 / (2 sinh(ln 2 / 2 · octaves)), the inverse of
/// octaves = 2/ln 2 · asinh(1 / (2 Q)).
[[nodiscard]] double qualityFromBandwidth(double octaves);

} // namespace quorbel
