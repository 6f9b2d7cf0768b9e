#include "settings/interchange/BandResponse.h"

#include "platform/dsp/AnalogPrototype.h"
#include "settings/records/PlayedFilterType.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quorbel {

namespace {

constexpr double smallestPower = 1e-20;

AnalogPrototype prototypeOf(const EQBand &band) {
    return AnalogPrototype::of(
        playedFilterType(band.filterType), clampedGainDB(band.gainDB),
        std::clamp(static_cast<double>(band.q), lowestPlayedQ(), highestPlayedQ()));
}

double frequencyOf(const EQBand &band) {
    return std::clamp(static_cast<double>(band.frequency), minimumBandFrequencyHz,
                      playedTopFrequencyHz);
}

double decibels(double power) { return 10.0 * std::log10(std::max(power, smallestPower)); }

} // namespace

double lowestPlayedQ() { return qualityFromBandwidth(maximumBandwidthOctaves); }
double highestPlayedQ() { return qualityFromBandwidth(minimumBandwidthOctaves); }

std::vector<double> audibleFrequencies(std::size_t pointCount) {
    std::vector<double> frequencies(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i)
        frequencies[i] =
            20.0 * std::pow(1000.0, static_cast<double>(i) / static_cast<double>(pointCount - 1));
    return frequencies;
}

double bandResponseDB(const EQBand &band, double frequencyHz) {
    return band.bypassed ? 0.0 : decibels(prototypeOf(band).power(frequencyHz / frequencyOf(band)));
}

void addBandResponseDB(const EQBand &band, const std::vector<double> &frequenciesHz,
                       std::vector<double> &sumDB) {
    if (band.bypassed)
        return;
    const AnalogPrototype prototype = prototypeOf(band);
    const double centre = frequencyOf(band);
    for (std::size_t i = 0; i < frequenciesHz.size(); ++i)
        sumDB[i] += decibels(prototype.power(frequenciesHz[i] / centre));
}

} // namespace quorbel
