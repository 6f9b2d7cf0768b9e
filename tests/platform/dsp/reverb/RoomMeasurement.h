#pragma once

#include "support/Stereo.h"

#include <cstddef>
#include <vector>

namespace quorbel::testing {

/// RT60 in seconds of an impulse response in the band of `fraction` octaves around `frequency`.
/// Method: backward integration (M. Schroeder, "New method of measuring reverberation time", 1965)
/// and linear regression of the decay from -5 to -35 dB (ISO 3382).
[[nodiscard]] double decayTime(const std::vector<float> &response, double sampleRate,
                               double frequency, double fraction);

/// Normalised echo density every `hop` frames (J. Abel and P. Huang, "A simple, robust measure of
/// reverberation echo density", 2006): the share of samples beyond the standard deviation in a
/// Hann-weighted 20 ms window, relative to the share in Gaussian noise (1: as dense as noise).
[[nodiscard]] std::vector<double> echoDensity(const std::vector<float> &response, double sampleRate,
                                              std::size_t hop);

/// Correlation of both channels from `first` to `last` at lag 0, in [-1, 1].
[[nodiscard]] double correlation(const Stereo &sound, std::size_t first, std::size_t last);

/// Integrated loudness in LUFS without gating (ITU-R BS.1770, K-weighting for 48 kHz).
[[nodiscard]] double loudness(const Stereo &sound);

/// Noise of equal power per octave, in [-1, 1], determined by `seed`.
[[nodiscard]] std::vector<float> pinkNoise(std::size_t frames, unsigned seed);

} // namespace quorbel::testing
