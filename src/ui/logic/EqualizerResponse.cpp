#include "ui/logic/EqualizerResponse.h"

#include "platform/dsp/SectionDesign.h"
#include "settings/interchange/BandResponse.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

std::vector<double> equalizerResponseDB(const ParametricEqualizerNode &node, double sampleRate,
                                        std::size_t pointCount) {
    constexpr double smallestPower = 1e-20;
    const std::vector<double> frequencies = audibleFrequencies(pointCount);
    std::vector<double> response(pointCount, 0.0);
    for (std::size_t index = 0; index < node.bandCount(); ++index) {
        const auto section = designBand(node.band(index), sampleRate);
        if (!section)
            continue;
        for (std::size_t point = 0; point < pointCount; ++point)
            response[point] +=
                10.0 * std::log10(std::max(section->power(frequencies[point] / sampleRate),
                                           smallestPower));
    }
    return response;
}

} // namespace quorbel
