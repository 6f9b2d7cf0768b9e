#include "settings/interchange/BandResponse.h"

#include "equalizer/AnalogPrototype.h"
#include "settings/records/PlayedFilterType.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quorbel {

namespace {

AnalogPrototype prototypeOf(const EQBand &band) {
    return AnalogPrototype::of(
        playedFilterType(band.filterType), clampedGainDB(band.gainDB),
        std::clamp(static_cast<double>(band.q), lowestPlayedQ(), highestPlayedQ()));
}

double frequencyOf(const EQBand &band) {
    return std::clamp(static_cast<double>(band.frequency), minimumBandFrequencyHz,
                      playedTopFrequencyHz);
}

} // namespace

double lowestPlayedQ() { return qualityFromBandwidth(maximumBandwidthOctaves); }
double highestPlayedQ() { return qualityFromBandwidth(minimumBandwidthOctaves); }

double audibleFrequency(std::size_t point, std::size_t pointCount) {
    return 20.0 *
           std::pow(1000.0, static_cast<double>(point) / static_cast<double>(pointCount - 1));
}

std::vector<double> audibleFrequencies(std::size_t pointCount) {
    std::vector<double> frequencies(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i)
        frequencies[i] = audibleFrequency(i, pointCount);
    return frequencies;
}

double decibelsOfPower(double power) {
    constexpr double smallestPower = 1e-20;
    return 10.0 * std::log10(std::max(power, smallestPower));
}

void addBandResponseDB(const EQBand &band, const std::vector<double> &frequenciesHz,
                       std::vector<double> &sumDB) {
    if (band.bypassed)
        return;
    const AnalogPrototype prototype = prototypeOf(band);
    const double centre = frequencyOf(band);
    for (std::size_t i = 0; i < frequenciesHz.size(); ++i)
        sumDB[i] += decibelsOfPower(prototype.power(frequenciesHz[i] / centre));
}

} // namespace quorbel
