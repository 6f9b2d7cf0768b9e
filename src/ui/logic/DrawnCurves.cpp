#include "ui/logic/DrawnCurves.h"

#include "equalizer/SectionDesign.h"
#include "settings/interchange/BandResponse.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quorbel {

namespace {

double passDB(double ratio, double order) {
    constexpr double smallestGain = 1e-6;
    return 20.0 * std::log10(std::max(smallestGain, 1.0 / std::sqrt(std::pow(ratio, order) + 1.0)));
}

double shareDB(const EQBand &band, double frequencyHz) {
    const double f0 = static_cast<double>(band.frequency);
    const double gain = static_cast<double>(band.gainDB);
    const double q = std::max(static_cast<double>(band.q), 0.1);
    switch (band.filterType) {
    case EQBand::FilterType::parametric: {
        const double x = (frequencyHz / f0 - f0 / frequencyHz) * q;
        return gain / (1.0 + x * x);
    }
    case EQBand::FilterType::lowShelf:
        return gain / (std::pow(frequencyHz / f0, 2.0 * q) + 1.0);
    case EQBand::FilterType::highShelf:
        return gain / (std::pow(f0 / frequencyHz, 2.0 * q) + 1.0);
    case EQBand::FilterType::lowPass:
        return passDB(frequencyHz / f0, 2.0 * q);
    case EQBand::FilterType::highPass:
        return passDB(f0 / frequencyHz, 2.0 * q);
    }
    return 0.0;
}

} // namespace

double displayFrequency(std::size_t point) { return audibleFrequency(point, displayPointCount); }

DisplayResponse displayResponse(const std::vector<EQBand> &bands) {
    DisplayResponse response{};
    for (std::size_t point = 0; point < displayPointCount; ++point) {
        const double frequencyHz = displayFrequency(point);
        for (const EQBand &band : bands)
            if (!band.bypassed)
                response[point] += shareDB(band, frequencyHz);
    }
    return response;
}

double peakDB(const DisplayResponse &response) {
    return *std::ranges::max_element(response, {}, [](double value) { return std::abs(value); });
}

double drawingHeight(double valueDB, double lowDB, double highDB) {
    const double height = valueDB / (highDB - lowDB) + 0.5;
    return height > 0.0 ? std::min(height, 1.0) : 0.0; // NaN is drawn at the bottom
}

std::vector<double> curveValues(const DisplayResponse &response, double lowDB, double highDB) {
    std::vector<double> heights(response.size());
    std::ranges::transform(response, heights.begin(),
                           [&](double value) { return drawingHeight(value, lowDB, highDB); });
    return heights;
}

std::vector<double> equalizerResponseDB(const ParametricEqualizerNode &node, double sampleRate,
                                        std::size_t pointCount) {
    const std::vector<double> frequencies = audibleFrequencies(pointCount);
    std::vector<double> response(pointCount, 0.0);
    for (std::size_t index = 0; index < node.bandCount(); ++index) {
        const auto section = designBand(node.band(index), sampleRate);
        if (!section)
            continue;
        for (std::size_t point = 0; point < pointCount; ++point)
            response[point] += decibelsOfPower(section->power(frequencies[point] / sampleRate));
    }
    return response;
}

std::vector<double> filledLevels(std::vector<double> levels, const std::vector<bool> &isMeasured) {
    const std::size_t count = levels.size();
    for (std::size_t band = 0; band < count; ++band) {
        if (isMeasured[band])
            continue;
        std::size_t end = band; // of the gap
        while (end < count && !isMeasured[end])
            ++end;
        if (end == count && band == 0)
            break; // no band is measured
        const double before = band > 0 ? levels[band - 1] : levels[end];
        const double after = end < count ? levels[end] : before;
        const double steps = static_cast<double>(end - band + 1);
        for (std::size_t at = band; at < end; ++at)
            levels[at] = before + (after - before) * static_cast<double>(at - band + 1) / steps;
        band = end;
    }
    return levels;
}

} // namespace quorbel
