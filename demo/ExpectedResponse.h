#pragma once

#include "soundserver/Levels.h"
#include "soundserver/LiveProcess.h"

namespace quorbel::demo {

/// The gain in dB that an equaliser's settings ask for at a frequency: the sum of its bands' analog
/// prototypes (R. Bristow-Johnson, "Cookbook formulae for audio equalizer biquad filter
/// coefficients"). Written for judging the processed sound, apart from what processes it. Throws
/// `std::invalid_argument` for a filter type that the demo does not use.
double expectedGainDB(const soundserver::LiveSettings &settings, double hz);

/// What a sound's spectrum should be after the equaliser.
soundserver::PowerSpectrum expectedSpectrum(soundserver::PowerSpectrum before,
                                            const soundserver::LiveSettings &settings);

} // namespace quorbel::demo
