#include "effects/EQProcessor.h"

#include "effects/FilterBandwidth.h"

#include <algorithm>
#include <utility>

namespace quorbel {

namespace {

EqualizerFilterType nodeFilterType(EQBand::FilterType type) {
    switch (type) {
    case EQBand::FilterType::parametric:
        return EqualizerFilterType::parametric;
    case EQBand::FilterType::lowShelf:
        return EqualizerFilterType::lowShelf;
    case EQBand::FilterType::highShelf:
        return EqualizerFilterType::highShelf;
    case EQBand::FilterType::lowPass:
        return EqualizerFilterType::lowPass;
    case EQBand::FilterType::highPass:
        return EqualizerFilterType::highPass;
    }
    return EqualizerFilterType::parametric;
}

} // namespace

EQProcessor::EQProcessor(std::vector<EQBand> bands) : bands_(std::move(bands)), eq_(bands_.size()) {
    sync();
}

void EQProcessor::setBands(std::vector<EQBand> bands) {
    bands_ = std::move(bands);
    sync();
    Q_EMIT bandsChanged();
}

void EQProcessor::setGlobalGainDB(float gainDB) {
    globalGainDB_ = gainDB;
    syncGlobalGain();
    Q_EMIT globalGainDBChanged();
}

void EQProcessor::setBypassed(float gainDB) {
    bypassGainDB_ = gainDB;
    sync();
    syncGlobalGain();
}

void EQProcessor::endBypass() {
    bypassGainDB_.reset();
    sync();
    syncGlobalGain();
}

void EQProcessor::syncGlobalGain() { eq_.setGlobalGainDB(bypassGainDB_.value_or(globalGainDB_)); }

void EQProcessor::sync() {
    const std::size_t count = std::min(bands_.size(), eq_.bandCount());
    for (std::size_t i = 0; i < count; ++i) {
        const EQBand &band = bands_[i];
        eq_.setBand(i, {.filterType = nodeFilterType(band.filterType),
                        .frequencyHz = band.frequency,
                        .bandwidthOctaves = bandwidthOctaves(band.q),
                        .gainDB = band.gainDB,
                        .bypass = band.bypassed || bypassGainDB_});
    }
}

} // namespace quorbel
