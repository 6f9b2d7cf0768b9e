#pragma once

#include "ui/logic/DrawnCurves.h"
#include "ui/logic/NumberFormat.h"
#include "ui/model/BandListModel.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// State of the equaliser for its screen. [main]
class EqualizerModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.equalizer is the only one")
    Q_PROPERTY(quorbel::BandListModel *bands READ bands CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY bandsChanged)
    Q_PROPERTY(int bypassedCount READ bypassedCount NOTIFY bandsChanged)
    // Both curves include the global and the preset gain; the peak is that of the bands alone.
    /// Drawn response: 90 heights from 0 to 1 over -`drawnRangeDB` to `drawnRangeDB`.
    Q_PROPERTY(QList<qreal> curveValues READ curveValues NOTIFY responseChanged)
    /// Played response, as 361 such heights.
    Q_PROPERTY(QList<qreal> exactValues READ exactValues NOTIFY responseChanged)
    Q_PROPERTY(double peakDB READ peakDB NOTIFY responseChanged)
    Q_PROPERTY(QString peakText READ peakText NOTIFY responseChanged)
    Q_PROPERTY(double globalGainDB READ globalGainDB WRITE setGlobalGainDB NOTIFY globalGainChanged)
    Q_PROPERTY(QString globalGainText READ globalGainText NOTIFY globalGainChanged)
    /// Sum of both gains: offset of the curves from the bands' own response.
    Q_PROPERTY(double totalGainDB READ totalGainDB NOTIFY totalGainChanged)
    Q_PROPERTY(QStringList filterTypeTitles READ filterTypeTitles CONSTANT)
    Q_PROPERTY(double drawnRangeDB READ drawnRangeDB CONSTANT)
    Q_PROPERTY(double minFrequency READ minFrequency CONSTANT)
    Q_PROPERTY(double maxFrequency READ maxFrequency CONSTANT)
    Q_PROPERTY(double minGain READ minGain CONSTANT)
    Q_PROPERTY(double maxGain READ maxGain CONSTANT)
    Q_PROPERTY(double gainStep READ gainStep CONSTANT)
    /// Gains in dB at which the curve and the faders have marks.
    Q_PROPERTY(QList<qreal> gainMarks READ gainMarks CONSTANT)
    Q_PROPERTY(double minQ READ minQ CONSTANT)
    Q_PROPERTY(double maxQ READ maxQ CONSTANT)

  public:
    EqualizerModel(EQProcessor &eq, HistoryModel &history, QObject *parent);

    [[nodiscard]] BandListModel *bands() { return &bands_; }
    [[nodiscard]] int count() const { return bands_.count(); }
    [[nodiscard]] int bypassedCount() const;
    [[nodiscard]] QList<qreal> curveValues() const;
    [[nodiscard]] QList<qreal> exactValues() const;
    [[nodiscard]] double peakDB() const;
    [[nodiscard]] QString peakText() const;
    [[nodiscard]] double globalGainDB() const;
    void setGlobalGainDB(double dB);
    [[nodiscard]] QString globalGainText() const;
    [[nodiscard]] double totalGainDB() const { return shownValue(eq_.totalGainDB()); }

    /// In the order of `EQBand::FilterType`.
    [[nodiscard]] static QStringList filterTypeTitles();
    [[nodiscard]] static double drawnRangeDB() { return 15.0; }
    [[nodiscard]] static double minFrequency() { return BandLimits::minFrequency; }
    [[nodiscard]] static double maxFrequency() { return BandLimits::maxFrequency; }
    [[nodiscard]] static double minGain() { return BandLimits::minGain; }
    [[nodiscard]] static double maxGain() { return BandLimits::maxGain; }
    [[nodiscard]] static double gainStep() { return BandLimits::gainStep; }
    [[nodiscard]] static QList<qreal> gainMarks() { return {12.0, 6.0, 0.0, -6.0, -12.0}; }
    [[nodiscard]] static double minQ() { return BandLimits::minQ; }
    [[nodiscard]] static double maxQ() { return BandLimits::maxQ; }

    /// Replaces the bands with the default ones.
    Q_INVOKABLE void resetAll();

    // Returns the number in a typed text (TypedValue.h); NaN for any other text.
    Q_INVOKABLE static double parseFrequency(const QString &text);
    Q_INVOKABLE static double parseGain(const QString &text);
    Q_INVOKABLE static double parseQ(const QString &text);

  Q_SIGNALS:
    void bandsChanged();
    void responseChanged();
    void globalGainChanged();
    void totalGainChanged();

  private:
    EQProcessor &eq_;
    HistoryModel &history_;
    BandListModel bands_;
};

} // namespace quorbel
