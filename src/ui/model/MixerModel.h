#pragma once

#include "engine/AudioEngine.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

class HistoryModel;

/// The engine's mixer settings, field by field under their own names. Each write is one of the
/// whole record, so that it reaches the sound at once; a value that is no number is ignored.
/// [main]
class MixerModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.mixer is the only one")
    Q_PROPERTY(
        bool tempoChainEnabled READ tempoChainEnabled WRITE setTempoChainEnabled NOTIFY changed)
    Q_PROPERTY(double tempoRate READ tempoRate WRITE setTempoRate NOTIFY changed)
    Q_PROPERTY(double pitchSemitones READ pitchSemitones WRITE setPitchSemitones NOTIFY changed)
    Q_PROPERTY(
        bool saturationEnabled READ saturationEnabled WRITE setSaturationEnabled NOTIFY changed)
    Q_PROPERTY(double saturationDrive READ saturationDrive WRITE setSaturationDrive NOTIFY changed)
    Q_PROPERTY(bool crossfeedEnabled READ crossfeedEnabled WRITE setCrossfeedEnabled NOTIFY changed)
    Q_PROPERTY(double crossfeedAmount READ crossfeedAmount WRITE setCrossfeedAmount NOTIFY changed)
    Q_PROPERTY(bool limiterEnabled READ limiterEnabled WRITE setLimiterEnabled NOTIFY changed)
    Q_PROPERTY(double limiterThresholdDB READ limiterThresholdDB WRITE setLimiterThresholdDB NOTIFY
                   changed)
    Q_PROPERTY(bool autoGainEnabled READ autoGainEnabled WRITE setAutoGainEnabled NOTIFY changed)
    Q_PROPERTY(
        double autoGainTargetDB READ autoGainTargetDB WRITE setAutoGainTargetDB NOTIFY changed)
    Q_PROPERTY(bool manualLoudnessEnabled READ manualLoudnessEnabled WRITE setManualLoudnessEnabled
                   NOTIFY changed)
    Q_PROPERTY(
        double manualLoudnessDB READ manualLoudnessDB WRITE setManualLoudnessDB NOTIFY changed)
    Q_PROPERTY(bool spectrumEnabled READ spectrumEnabled WRITE setSpectrumEnabled NOTIFY changed)
    Q_PROPERTY(int colourStagesOn READ colourStagesOn NOTIFY changed)
    Q_PROPERTY(int levelStagesOn READ levelStagesOn NOTIFY changed)
    /// Whether peaks are held, in words.
    Q_PROPERTY(QString peakProtection READ peakProtection NOTIFY changed)

  public:
    MixerModel(AudioEngine &engine, HistoryModel &history, QObject *parent);

    [[nodiscard]] bool tempoChainEnabled() const;
    void setTempoChainEnabled(bool value);
    [[nodiscard]] double tempoRate() const;
    void setTempoRate(double value);
    [[nodiscard]] double pitchSemitones() const;
    void setPitchSemitones(double value);
    [[nodiscard]] bool saturationEnabled() const;
    void setSaturationEnabled(bool value);
    [[nodiscard]] double saturationDrive() const;
    void setSaturationDrive(double value);
    [[nodiscard]] bool crossfeedEnabled() const;
    void setCrossfeedEnabled(bool value);
    [[nodiscard]] double crossfeedAmount() const;
    void setCrossfeedAmount(double value);
    [[nodiscard]] bool limiterEnabled() const;
    void setLimiterEnabled(bool value);
    [[nodiscard]] double limiterThresholdDB() const;
    void setLimiterThresholdDB(double value);
    [[nodiscard]] bool autoGainEnabled() const;
    void setAutoGainEnabled(bool value);
    [[nodiscard]] double autoGainTargetDB() const;
    void setAutoGainTargetDB(double value);
    [[nodiscard]] bool manualLoudnessEnabled() const;
    void setManualLoudnessEnabled(bool value);
    [[nodiscard]] double manualLoudnessDB() const;
    void setManualLoudnessDB(double value);
    [[nodiscard]] bool spectrumEnabled() const;
    void setSpectrumEnabled(bool value);
    [[nodiscard]] int colourStagesOn() const;
    [[nodiscard]] int levelStagesOn() const;
    [[nodiscard]] QString peakProtection() const;

  Q_SIGNALS:
    void changed();

  private:
    void set(float MixerConfig::*field, double value, const char *what);
    void set(bool MixerConfig::*field, bool value, const char *what);

    AudioEngine &engine_;
    HistoryModel &history_;
};

} // namespace quorbel
