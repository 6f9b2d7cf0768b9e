#pragma once

#include "engine/AudioEngine.h"

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

class HistoryModel;

/// The engine's spatial settings, field by field under their own names. Each write is one of the
/// whole record, so that it reaches the sound at once; a value that is no number is ignored.
/// [main]
class SpatialModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.spatial is the only one")
    Q_PROPERTY(bool widenerEnabled READ widenerEnabled WRITE setWidenerEnabled NOTIFY changed)
    Q_PROPERTY(double widthPercent READ widthPercent WRITE setWidthPercent NOTIFY changed)
    Q_PROPERTY(bool xtcEnabled READ xtcEnabled WRITE setXtcEnabled NOTIFY changed)
    Q_PROPERTY(double xtcAmount READ xtcAmount WRITE setXtcAmount NOTIFY changed)
    Q_PROPERTY(
        double xtcNotchFrequency READ xtcNotchFrequency WRITE setXtcNotchFrequency NOTIFY changed)
    Q_PROPERTY(bool reverbEnabled READ reverbEnabled WRITE setReverbEnabled NOTIFY changed)
    Q_PROPERTY(double reverbMix READ reverbMix WRITE setReverbMix NOTIFY changed)
    Q_PROPERTY(bool bassEnabled READ bassEnabled WRITE setBassEnabled NOTIFY changed)
    Q_PROPERTY(double bassAmount READ bassAmount WRITE setBassAmount NOTIFY changed)
    Q_PROPERTY(double bassDrive READ bassDrive WRITE setBassDrive NOTIFY changed)
    Q_PROPERTY(double bassCrossover READ bassCrossover WRITE setBassCrossover NOTIFY changed)
    Q_PROPERTY(bool bassAdaptiveEnabled READ bassAdaptiveEnabled WRITE setBassAdaptiveEnabled NOTIFY
                   changed)
    Q_PROPERTY(bool voiceEnabled READ voiceEnabled WRITE setVoiceEnabled NOTIFY changed)
    Q_PROPERTY(double voiceAmount READ voiceAmount WRITE setVoiceAmount NOTIFY changed)
    Q_PROPERTY(double voicePresenceGainDB READ voicePresenceGainDB WRITE setVoicePresenceGainDB
                   NOTIFY changed)
    Q_PROPERTY(double voiceMudCutDB READ voiceMudCutDB WRITE setVoiceMudCutDB NOTIFY changed)
    Q_PROPERTY(bool voiceAdaptiveEnabled READ voiceAdaptiveEnabled WRITE setVoiceAdaptiveEnabled
                   NOTIFY changed)
    Q_PROPERTY(double toneBassDB READ toneBassDB WRITE setToneBassDB NOTIFY changed)
    Q_PROPERTY(double toneMidDB READ toneMidDB WRITE setToneMidDB NOTIFY changed)
    Q_PROPERTY(double toneTrebleDB READ toneTrebleDB WRITE setToneTrebleDB NOTIFY changed)
    /// Which of `reverbPresetTitles`.
    Q_PROPERTY(int reverbPreset READ reverbPresetIndex WRITE setReverbPresetIndex NOTIFY changed)
    Q_PROPERTY(
        int reverbPresetIndex READ reverbPresetIndex WRITE setReverbPresetIndex NOTIFY changed)
    Q_PROPERTY(QStringList reverbPresetTitles READ reverbPresetTitles CONSTANT)
    /// How many of the five stages are on.
    Q_PROPERTY(int enabledCount READ enabledCount NOTIFY changed)

  public:
    SpatialModel(AudioEngine &engine, HistoryModel &history, QObject *parent);

    [[nodiscard]] bool widenerEnabled() const;
    void setWidenerEnabled(bool value);
    [[nodiscard]] double widthPercent() const;
    void setWidthPercent(double value);
    [[nodiscard]] bool xtcEnabled() const;
    void setXtcEnabled(bool value);
    [[nodiscard]] double xtcAmount() const;
    void setXtcAmount(double value);
    [[nodiscard]] double xtcNotchFrequency() const;
    void setXtcNotchFrequency(double value);
    [[nodiscard]] bool reverbEnabled() const;
    void setReverbEnabled(bool value);
    [[nodiscard]] double reverbMix() const;
    void setReverbMix(double value);
    [[nodiscard]] bool bassEnabled() const;
    void setBassEnabled(bool value);
    [[nodiscard]] double bassAmount() const;
    void setBassAmount(double value);
    [[nodiscard]] double bassDrive() const;
    void setBassDrive(double value);
    [[nodiscard]] double bassCrossover() const;
    void setBassCrossover(double value);
    [[nodiscard]] bool bassAdaptiveEnabled() const;
    void setBassAdaptiveEnabled(bool value);
    [[nodiscard]] bool voiceEnabled() const;
    void setVoiceEnabled(bool value);
    [[nodiscard]] double voiceAmount() const;
    void setVoiceAmount(double value);
    [[nodiscard]] double voicePresenceGainDB() const;
    void setVoicePresenceGainDB(double value);
    [[nodiscard]] double voiceMudCutDB() const;
    void setVoiceMudCutDB(double value);
    [[nodiscard]] bool voiceAdaptiveEnabled() const;
    void setVoiceAdaptiveEnabled(bool value);
    [[nodiscard]] double toneBassDB() const;
    void setToneBassDB(double value);
    [[nodiscard]] double toneMidDB() const;
    void setToneMidDB(double value);
    [[nodiscard]] double toneTrebleDB() const;
    void setToneTrebleDB(double value);
    [[nodiscard]] int reverbPresetIndex() const;
    void setReverbPresetIndex(int index);
    [[nodiscard]] static QStringList reverbPresetTitles();
    [[nodiscard]] int enabledCount() const;

    /// Sets the three tone gains to 0 dB.
    Q_INVOKABLE void resetTone();

  Q_SIGNALS:
    void changed();

  private:
    void set(float SpatialConfig::*field, double value, const char *what);
    void set(bool SpatialConfig::*field, bool value, const char *what);

    AudioEngine &engine_;
    HistoryModel &history_;
};

} // namespace quorbel
