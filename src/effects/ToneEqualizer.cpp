#include "effects/ToneEqualizer.h"

#include "effects/FilterBandwidth.h"

#include <array>

namespace quorbel {

ToneEqualizer::ToneEqualizer() {
    struct Row {
        EqualizerFilterType type;
        float frequencyHz;
        float q;
    };
    constexpr std::array<Row, bandCount> table{{
        {EqualizerFilterType::lowShelf, 100.0F, 0.707F},
        {EqualizerFilterType::parametric, 1000.0F, 0.7F},
        {EqualizerFilterType::highShelf, 5000.0F, 0.707F},
    }};
    for (std::size_t i = 0; i < bandCount; ++i)
        node_.setBand(i, {.filterType = table[i].type,
                          .frequencyHz = table[i].frequencyHz,
                          .bandwidthOctaves = bandwidthOctaves(table[i].q),
                          .gainDB = 0.0F,
                          .bypass = false});
}

void ToneEqualizer::setGainsDB(const std::array<float, bandCount> &gainsDB) {
    std::array<EqualizerBandSettings, bandCount> settings;
    for (std::size_t i = 0; i < bandCount; ++i) {
        settings[i] = node_.band(i);
        settings[i].gainDB = gainsDB[i];
    }
    node_.set(settings, 0.0F);
}

} // namespace quorbel
