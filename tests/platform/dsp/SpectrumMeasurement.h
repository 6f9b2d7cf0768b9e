#pragma once

#include <span>

#include <vector>

namespace quorbel::testing {

/// |X|² of a real signal at bins 0 to N/2, in double precision.
std::vector<double> powerSpectrum(std::span<const double> signal);

/// The share of the energy outside lowHz to highHz in the energy inside, in dB. Four-term
/// Blackman-Harris window, whose own leakage lies below -90 dB.
double energyOutsideDB(std::span<const float> signal, double lowHz, double highHz,
                       double sampleRate);

/// The rest of a signal, in dB relative to the sine in it, after the best-fitting sine of
/// exactly `frequencyHz` and a constant have been taken out.
double residualDB(std::span<const float> signal, double frequencyHz, double sampleRate);

/// The amplitude of the best-fitting sine.
double amplitudeAt(std::span<const float> signal, double frequencyHz, double sampleRate);

/// `amplitude` · sin(2π frequencyHz n / sampleRate), computed in double precision.
std::vector<float> sine(double frequencyHz, double amplitude, std::size_t frames,
                        double sampleRate = 48000.0);

} // namespace quorbel::testing
