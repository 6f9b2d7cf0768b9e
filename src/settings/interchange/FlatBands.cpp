#include "settings/interchange/FlatBands.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorbel {

namespace {

double distanceInOctaves(const std::vector<EQBand> &bands, float frequency) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const EQBand &band : bands)
        if (band.frequency > 0.0F)
            nearest = std::min(
                nearest, std::abs(std::log2(static_cast<double>(band.frequency / frequency))));
    return nearest;
}

} // namespace

void fillWithFlatBands(std::vector<EQBand> &bands) {
    const std::vector<EQBand> octaves = EQBand::defaultBands();
    while (bands.size() < equalizerBandCount) {
        float farthest = octaves.front().frequency;
        for (const EQBand &octave : octaves)
            if (distanceInOctaves(bands, octave.frequency) > distanceInOctaves(bands, farthest))
                farthest = octave.frequency;
        bands.push_back(EQBand{.frequency = farthest});
    }
}

} // namespace quorbel
