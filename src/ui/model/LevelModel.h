#pragma once

#include "engine/AudioEngine.h"
#include "platform/threads/Timer.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

class HistoryModel;

/// Headroom below full scale, of the response and of the sound so far. [main]
class LevelModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.level is the only one")
    /// Gain of the preset in use.
    Q_PROPERTY(double presetGainDB READ presetGainDB WRITE setPresetGainDB NOTIFY presetGainChanged)
    Q_PROPERTY(QString presetGainText READ presetGainText NOTIFY presetGainChanged)
    /// Highest point of the response with all gains: "+3.4 dB".
    Q_PROPERTY(QString highestPointText READ highestPointText NOTIFY highestPointChanged)
    /// Text for `lowerToFullScale`: "Lower by 3.4 dB".
    Q_PROPERTY(QString lowerToFullScaleText READ lowerToFullScaleText NOTIFY highestPointChanged)
    /// True if the highest point is above 0 dB.
    Q_PROPERTY(bool overshoots READ overshoots NOTIFY highestPointChanged)
    /// Highest peaks since `clearHeld`, in words.
    Q_PROPERTY(QString heldPeakText READ heldPeakText NOTIFY heldChanged)
    Q_PROPERTY(QString heldSamplePeakText READ heldSamplePeakText NOTIFY heldChanged)
    Q_PROPERTY(QString limiterTimeText READ limiterTimeText NOTIFY heldChanged)
    /// Reduction in dB by `lowerByExcess`; 0 if nothing was too loud or one is still settling.
    Q_PROPERTY(double excessDB READ excessDB NOTIFY heldChanged)
    /// Text for `lowerByExcess`: "Lower by 2.1 dB".
    Q_PROPERTY(QString lowerText READ lowerText NOTIFY heldChanged)

  public:
    LevelModel(AudioEngine &engine, HistoryModel &history, Clock &clock, QObject *parent);

    [[nodiscard]] double presetGainDB() const;
    void setPresetGainDB(double dB);
    [[nodiscard]] QString presetGainText() const;
    [[nodiscard]] QString highestPointText() const;
    [[nodiscard]] QString lowerToFullScaleText() const;
    [[nodiscard]] bool overshoots() const;
    [[nodiscard]] QString heldPeakText() const;
    [[nodiscard]] QString heldSamplePeakText() const;
    [[nodiscard]] QString limiterTimeText() const;
    [[nodiscard]] double excessDB() const;
    [[nodiscard]] QString lowerText() const;

    /// Lowers the preset's gain so that the highest point is at 0 dB.
    Q_INVOKABLE void lowerToFullScale();
    /// Lowers the target of Auto-Gain, or the global gain while that is off, by `excessDB`. Clears
    /// the held levels, and again once the sound has reached the lower level.
    Q_INVOKABLE void lowerByExcess();
    Q_INVOKABLE void clearHeld();

  Q_SIGNALS:
    void presetGainChanged();
    void highestPointChanged();
    void heldChanged();

  private:
    void updateHighestPoint();

    AudioEngine &engine_;
    HistoryModel &history_;
    Clock &clock_;
    double highestPointDB_ = 0.0;
    Timer lowering_; ///< set until the sound has reached the lower level
};

} // namespace quorbel
