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

} // namespace quorbel::testing
