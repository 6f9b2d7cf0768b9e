#pragma once

#include "support/Stereo.h"

#include <cstddef>
#include <vector>

namespace quorbel::testing {

/// The RT60 in seconds of an impulse response in the band of `fraction` octaves around `frequency`:
/// by backward integration (M. Schroeder, "New method of measuring reverberation time", 1965) and
/// the line through the decay from -5 to -35 dB, as ISO 3382 has it.
[[nodiscard]] double decayTime(const std::vector<float> &response, double sampleRate,
                               double frequency, double fraction);

/// The normalised echo density around each frame `hop` frames apart: the share of samples in a
/// Hann-weighted window of 20 ms beyond its standard deviation, over that of Gaussian noise
/// (J. Abel and P. Huang, "A simple, robust measure of reverberation echo density", 2006). 1 is as
/// dense as can be told.
[[nodiscard]] std::vector<double> echoDensity(const std::vector<float> &response, double sampleRate,
                                              std::size_t hop);

/// The correlation of two signals from `first` to `last`, -1 to 1, without delay.
[[nodiscard]] double correlation(const Stereo &sound, std::size_t first, std::size_t last);

/// The integrated loudness in LUFS without gating (ITU-R BS.1770, the K-weighting for 48 kHz).
[[nodiscard]] double loudness(const Stereo &sound);

/// Noise of equal power per octave, in [-1, 1]; `seed` picks one.
[[nodiscard]] std::vector<float> pinkNoise(std::size_t frames, unsigned seed);

} // namespace quorbel::testing
