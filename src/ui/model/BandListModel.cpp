#include "ui/model/BandListModel.h"

#include "ui/logic/NumberFormat.h"
#include "ui/model/HistoryModel.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

BandListModel::BandListModel(EQProcessor &eq, HistoryModel &history, QObject *parent)
    : RecordListModel(parent), eq_(eq), history_(history), bands_(eq.bands()) {
    connect(&eq_, &EQProcessor::bandsChanged, this, &BandListModel::follow);
}

int BandListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(bands_.size());
}

QVariant BandListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const EQBand &band = bands_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case bandIdRole:
        return QString::fromStdString(band.id.text());
    case frequencyRole:
        return shownValue(band.frequency);
    case gainRole:
        return shownValue(band.gainDB);
    case qRole:
        return shownValue(band.q);
    case filterTypeRole:
        return static_cast<int>(band.filterType);
    case bypassedRole:
        return band.bypassed;
    case frequencyLabelRole:
        return QString::fromStdString(frequencyLabel(band.frequency));
    case gainLabelRole:
        return QString::fromStdString(signedText(static_cast<double>(band.gainDB), 1));
    default:
        return {};
    }
}

QHash<int, QByteArray> BandListModel::roleNames() const {
    return {{bandIdRole, "bandId"},
            {frequencyRole, "frequency"},
            {gainRole, "gain"},
            {qRole, "q"},
            {filterTypeRole, "filterType"},
            {bypassedRole, "bypassed"},
            {gainLabelRole, "gainLabel"},
            {frequencyLabelRole, "frequencyLabel"}};
}

void BandListModel::setFrequency(int row, double hertz) {
    if (std::isfinite(hertz))
        edit(row, "Band frequency", [hertz](EQBand &band) {
            band.frequency =
                settingValue(std::clamp(hertz, BandLimits::minFrequency, BandLimits::maxFrequency));
        });
}

void BandListModel::setGain(int row, double dB) {
    if (std::isfinite(dB))
        edit(row, "Band gain", [dB](EQBand &band) {
            band.gainDB = settingValue(std::clamp(dB, BandLimits::minGain, BandLimits::maxGain));
        });
}

void BandListModel::setQ(int row, double q) {
    if (std::isfinite(q))
        edit(row, "Band Q", [q](EQBand &band) {
            band.q = settingValue(std::clamp(q, BandLimits::minQ, BandLimits::maxQ));
        });
}

void BandListModel::setFilterType(int row, int index) {
    if (index >= 0 && static_cast<std::size_t>(index) < EQBand::allFilterTypes.size())
        edit(row, "Band type", [index](EQBand &band) {
            band.filterType = EQBand::allFilterTypes[static_cast<std::size_t>(index)];
        });
}

void BandListModel::setBypassed(int row, bool bypassed) {
    edit(row, "Band bypass", [bypassed](EQBand &band) { band.bypassed = bypassed; });
}

void BandListModel::resetBand(int row) {
    edit(row, "Band reset", [row](EQBand &band) {
        const std::vector<EQBand> defaults = EQBand::defaultBands();
        EQBand reset = static_cast<std::size_t>(row) < defaults.size()
                           ? defaults[static_cast<std::size_t>(row)]
                           : EQBand{.frequency = band.frequency};
        reset.id = band.id;
        band = reset;
    });
}

void BandListModel::follow() { replaceRecords(bands_, eq_.bands(), &EQBand::id); }

void BandListModel::edit(int row, const char *what, const std::function<void(EQBand &)> &change) {
    if (row < 0 || row >= count())
        return;
    const auto index = static_cast<std::size_t>(row);
    std::vector<EQBand> bands = eq_.bands();
    change(bands[index]);
    if (bands[index] == bands_[index])
        return;
    const std::string key = what + bands[index].id.text();
    history_.edit(QString::fromUtf8(what), key, [&] { eq_.setBands(std::move(bands)); });
}

} // namespace quorbel
