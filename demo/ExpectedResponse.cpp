#include "ExpectedResponse.h"

#include <cmath>
#include <complex>
#include <stdexcept>

namespace quorbel::demo {
namespace {

std::complex<double> prototype(const soundserver::LiveSettings::Band &band, double hz) {
    const std::complex<double> s(0.0, hz / band.frequency);
    const double a = std::pow(10.0, band.gainDB / 40.0);
    if (band.filterType == "parametric")
        return (s * s + s * (a / band.q) + 1.0) / (s * s + s / (a * band.q) + 1.0);
    const std::complex<double> slope = s * (std::sqrt(a) / band.q);
    if (band.filterType == "lowShelf")
        return a * (s * s + slope + a) / (a * s * s + slope + 1.0);
    if (band.filterType == "highShelf")
        return a * (a * s * s + slope + 1.0) / (s * s + slope + a);
    throw std::invalid_argument("no prototype of a " + band.filterType + " band");
}

} // namespace

double expectedGainDB(const soundserver::LiveSettings &settings, double hz) {
    double gainDB = settings.eqGlobalGainDB;
    for (const auto &band : settings.bands)
        gainDB += 20.0 * std::log10(std::abs(prototype(band, hz)));
    return gainDB;
}

soundserver::PowerSpectrum expectedSpectrum(soundserver::PowerSpectrum before,
                                            const soundserver::LiveSettings &settings) {
    for (std::size_t bin = 0; bin < before.power.size(); ++bin) {
        before.power[bin] *=
            std::pow(10.0, expectedGainDB(settings, before.frequencyOf(bin)) / 10.0);
    }
    return before;
}

} // namespace quorbel::demo
