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
        eq_.setBand(i, {.filterType = playedFilterType(band.filterType),
                        .frequencyHz = band.frequency,
                        .bandwidthOctaves = bandwidthOctaves(band.q),
                        .gainDB = band.gainDB,
                        .bypass = band.bypassed || bypassGainDB_});
    }
}

} // namespace quorbel
