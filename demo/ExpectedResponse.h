#pragma once

#include "soundserver/Levels.h"
#include "soundserver/LiveProcess.h"

namespace quorbel::demo {

/// Gain in dB of an equaliser's settings at a frequency: the sum of its bands' analog prototypes
/// (R. Bristow-Johnson, "Cookbook formulae for audio equalizer biquad filter coefficients").
/// Independent of the program's own code, because it judges the processed sound. Throws
/// `std::invalid_argument` for a filter type that the demo does not use.
double expectedGainDB(const soundserver::LiveSettings &settings, double hz);

/// Expected spectrum of a sound after the equaliser.
soundserver::PowerSpectrum expectedSpectrum(soundserver::PowerSpectrum before,
                                            const soundserver::LiveSettings &settings);

} // namespace quorbel::demo
