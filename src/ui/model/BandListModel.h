#pragma once

#include "effects/EQProcessor.h"
#include "settings/records/EQBand.h"
#include "ui/model/RecordListModel.h"

#include <QString>

#include <functional>
#include <vector>

namespace quorbel {

class HistoryModel;

/// Bands of the equaliser, in list order. Clamps values to the controls' ranges (`BandLimits`);
/// ignores unknown rows and values that are not finite. [main]
class BandListModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.equalizer.bands is the only one")

  public:
    enum Role {
        bandIdRole = Qt::UserRole,
        frequencyRole,
        gainRole,
        qRole,
        filterTypeRole, ///< index into `EqualizerModel::filterTypeTitles`
        bypassedRole,
        frequencyLabelRole,
        gainLabelRole,
    };

    BandListModel(EQProcessor &eq, HistoryModel &history, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE void setFrequency(int row, double hertz);
    Q_INVOKABLE void setGain(int row, double dB);
    Q_INVOKABLE void setQ(int row, double q);
    Q_INVOKABLE void setFilterType(int row, int index);
    Q_INVOKABLE void setBypassed(int row, bool bypassed);
    /// Sets the band to its default; beyond the default list, to a flat one.
    Q_INVOKABLE void resetBand(int row);

  private:
    void follow();
    /// Applies `change` to a copy of the band and writes it back.
    void edit(int row, const char *what, const std::function<void(EQBand &)> &change);

    EQProcessor &eq_;
    HistoryModel &history_;
    std::vector<EQBand> bands_; ///< as shown
};

} // namespace quorbel
