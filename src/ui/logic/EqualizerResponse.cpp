#include "ui/logic/EqualizerResponse.h"

#include "platform/dsp/SectionDesign.h"
#include "settings/interchange/BandResponse.h"

namespace quorbel {

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

} // namespace quorbel
