#include "effects/EQProcessor.h"

#include "effects/FilterBandwidth.h"
#include "settings/records/PlayedFilterType.h"

#include <algorithm>
#include <utility>

namespace quorbel {

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
    sync();
    Q_EMIT globalGainDBChanged();
}

void EQProcessor::setPresetGainDB(float gainDB) {
    presetGainDB_ = gainDB;
    sync();
    Q_EMIT presetGainDBChanged();
}

void EQProcessor::set(std::vector<EQBand> bands, float globalGainDB) {
    bands_ = std::move(bands);
    globalGainDB_ = globalGainDB;
    sync();
    Q_EMIT bandsChanged();
    Q_EMIT globalGainDBChanged();
}

void EQProcessor::setBypassed(float gainDB) {
    bypassGainDB_ = gainDB;
    sync();
}

void EQProcessor::endBypass() {
    bypassGainDB_.reset();
    sync();
}

void EQProcessor::sync() {
    std::vector<EqualizerBandSettings> settings(std::min(bands_.size(), eq_.bandCount()));
    for (std::size_t i = 0; i < settings.size(); ++i) {
        const EQBand &band = bands_[i];
        settings[i] = {.filterType = playedFilterType(band.filterType),
                       .frequencyHz = band.frequency,
                       .bandwidthOctaves = bandwidthOctaves(band.q),
                       .gainDB = band.gainDB,
                       .bypass = band.bypassed || bypassGainDB_};
    }
    eq_.set(settings, bypassGainDB_.value_or(totalGainDB()));
}

} // namespace quorbel
