#pragma once

#include <span>

#include <vector>

namespace quorbel::testing {

/// |X|² of a real signal at bins 0 to N/2, in double precision.
std::vector<double> powerSpectrum(std::span<const double> signal);

/// Returns the ratio of the energy outside lowHz to highHz to the energy inside, in dB. Uses a
/// four-term Blackman-Harris window, with leakage below -90 dB.
double energyOutsideDB(std::span<const float> signal, double lowHz, double highHz,
                       double sampleRate);

} // namespace quorbel::testing
