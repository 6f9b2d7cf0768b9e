#include "ui/model/MixerModel.h"

#include "ui/logic/PanelTexts.h"
#include "ui/logic/Stages.h"
#include "ui/model/HistoryModel.h"
#include "ui/model/SettingValue.h"

#include <cmath>

namespace quorbel {

MixerModel::MixerModel(AudioEngine &engine, HistoryModel &history, QObject *parent)
    : QObject(parent), engine_(engine), history_(history) {
    connect(&engine_, &AudioEngine::mixerChanged, this, &MixerModel::changed);
}

bool MixerModel::tempoChainEnabled() const { return engine_.mixer().tempoChainEnabled; }
void MixerModel::setTempoChainEnabled(bool value) {
    set(&MixerConfig::tempoChainEnabled, value, "Tempo switch");
}
double MixerModel::tempoRate() const { return shownValue(engine_.mixer().tempoRate); }
void MixerModel::setTempoRate(double value) { set(&MixerConfig::tempoRate, value, "Tempo"); }
double MixerModel::pitchSemitones() const { return shownValue(engine_.mixer().pitchSemitones); }
void MixerModel::setPitchSemitones(double value) {
    set(&MixerConfig::pitchSemitones, value, "Pitch");
}
bool MixerModel::saturationEnabled() const { return engine_.mixer().saturationEnabled; }
void MixerModel::setSaturationEnabled(bool value) {
    set(&MixerConfig::saturationEnabled, value, "Saturation switch");
}
double MixerModel::saturationDrive() const { return shownValue(engine_.mixer().saturationDrive); }
void MixerModel::setSaturationDrive(double value) {
    set(&MixerConfig::saturationDrive, value, "Saturation drive");
}
bool MixerModel::crossfeedEnabled() const { return engine_.mixer().crossfeedEnabled; }
void MixerModel::setCrossfeedEnabled(bool value) {
    set(&MixerConfig::crossfeedEnabled, value, "Crossfeed switch");
}
double MixerModel::crossfeedAmount() const { return shownValue(engine_.mixer().crossfeedAmount); }
void MixerModel::setCrossfeedAmount(double value) {
    set(&MixerConfig::crossfeedAmount, value, "Crossfeed amount");
}
bool MixerModel::limiterEnabled() const { return engine_.mixer().limiterEnabled; }
void MixerModel::setLimiterEnabled(bool value) {
    set(&MixerConfig::limiterEnabled, value, "Limiter switch");
}
double MixerModel::limiterThresholdDB() const {
    return shownValue(engine_.mixer().limiterThresholdDB);
}
void MixerModel::setLimiterThresholdDB(double value) {
    set(&MixerConfig::limiterThresholdDB, value, "Limiter threshold");
}
bool MixerModel::autoGainEnabled() const { return engine_.mixer().autoGainEnabled; }
void MixerModel::setAutoGainEnabled(bool value) {
    set(&MixerConfig::autoGainEnabled, value, "Auto-Gain switch");
}
double MixerModel::autoGainTargetDB() const { return shownValue(engine_.mixer().autoGainTargetDB); }
void MixerModel::setAutoGainTargetDB(double value) {
    set(&MixerConfig::autoGainTargetDB, value, "Auto-Gain target");
}
bool MixerModel::manualLoudnessEnabled() const { return engine_.mixer().manualLoudnessEnabled; }
void MixerModel::setManualLoudnessEnabled(bool value) {
    set(&MixerConfig::manualLoudnessEnabled, value, "Manual Loudness switch");
}
double MixerModel::manualLoudnessDB() const { return shownValue(engine_.mixer().manualLoudnessDB); }
void MixerModel::setManualLoudnessDB(double value) {
    set(&MixerConfig::manualLoudnessDB, value, "Loudness trim");
}
bool MixerModel::spectrumEnabled() const { return engine_.mixer().spectrumEnabled; }
void MixerModel::setSpectrumEnabled(bool value) {
    set(&MixerConfig::spectrumEnabled, value, "Spectrum switch");
}

int MixerModel::colourStagesOn() const { return quorbel::colourStagesOn(engine_.mixer()); }
int MixerModel::levelStagesOn() const { return quorbel::levelStagesOn(engine_.mixer()); }
QString MixerModel::peakProtection() const {
    return QString::fromStdString(protectie(engine_.mixer()));
}

void MixerModel::set(float MixerConfig::*field, double value, const char *what) {
    MixerConfig mixer = engine_.mixer();
    if (!std::isfinite(value) || mixer.*field == settingValue(value))
        return;
    history_.edit(what, [&] {
        mixer.*field = settingValue(value);
        engine_.setMixer(mixer);
    });
}

void MixerModel::set(bool MixerConfig::*field, bool value, const char *what) {
    MixerConfig mixer = engine_.mixer();
    if (mixer.*field == value)
        return;
    history_.edit(what, [&] {
        mixer.*field = value;
        engine_.setMixer(mixer);
    });
}

} // namespace quorbel
