#include "ui/model/SpatialModel.h"

#include "ui/logic/Stages.h"
#include "ui/model/HistoryModel.h"
#include "ui/model/SettingValue.h"

#include <cmath>
#include <cstddef>

namespace quorbel {

SpatialModel::SpatialModel(AudioEngine &engine, HistoryModel &history, QObject *parent)
    : QObject(parent), engine_(engine), history_(history) {
    connect(&engine_, &AudioEngine::spatialChanged, this, &SpatialModel::changed);
}

bool SpatialModel::widenerEnabled() const { return engine_.spatial().widenerEnabled; }
void SpatialModel::setWidenerEnabled(bool value) {
    set(&SpatialConfig::widenerEnabled, value, "Stereo Widening switch");
}
double SpatialModel::widthPercent() const { return shownValue(engine_.spatial().widthPercent); }
void SpatialModel::setWidthPercent(double value) {
    set(&SpatialConfig::widthPercent, value, "Stereo width");
}
bool SpatialModel::xtcEnabled() const { return engine_.spatial().xtcEnabled; }
void SpatialModel::setXtcEnabled(bool value) {
    set(&SpatialConfig::xtcEnabled, value, "XTC switch");
}
double SpatialModel::xtcAmount() const { return shownValue(engine_.spatial().xtcAmount); }
void SpatialModel::setXtcAmount(double value) {
    set(&SpatialConfig::xtcAmount, value, "XTC amount");
}
double SpatialModel::xtcNotchFrequency() const {
    return shownValue(engine_.spatial().xtcNotchFrequency);
}
void SpatialModel::setXtcNotchFrequency(double value) {
    set(&SpatialConfig::xtcNotchFrequency, value, "Head-width notch");
}
bool SpatialModel::reverbEnabled() const { return engine_.spatial().reverbEnabled; }
void SpatialModel::setReverbEnabled(bool value) {
    set(&SpatialConfig::reverbEnabled, value, "Reverb switch");
}
double SpatialModel::reverbMix() const { return shownValue(engine_.spatial().reverbMix); }
void SpatialModel::setReverbMix(double value) {
    set(&SpatialConfig::reverbMix, value, "Reverb mix");
}
bool SpatialModel::bassEnabled() const { return engine_.spatial().bassEnabled; }
void SpatialModel::setBassEnabled(bool value) {
    set(&SpatialConfig::bassEnabled, value, "Deep Bass switch");
}
double SpatialModel::bassAmount() const { return shownValue(engine_.spatial().bassAmount); }
void SpatialModel::setBassAmount(double value) {
    set(&SpatialConfig::bassAmount, value, "Bass amount");
}
double SpatialModel::bassDrive() const { return shownValue(engine_.spatial().bassDrive); }
void SpatialModel::setBassDrive(double value) {
    set(&SpatialConfig::bassDrive, value, "Bass drive");
}
double SpatialModel::bassCrossover() const { return shownValue(engine_.spatial().bassCrossover); }
void SpatialModel::setBassCrossover(double value) {
    set(&SpatialConfig::bassCrossover, value, "Bass crossover");
}
bool SpatialModel::bassAdaptiveEnabled() const { return engine_.spatial().bassAdaptiveEnabled; }
void SpatialModel::setBassAdaptiveEnabled(bool value) {
    set(&SpatialConfig::bassAdaptiveEnabled, value, "Adaptive bass switch");
}
bool SpatialModel::voiceEnabled() const { return engine_.spatial().voiceEnabled; }
void SpatialModel::setVoiceEnabled(bool value) {
    set(&SpatialConfig::voiceEnabled, value, "Voice Clarity switch");
}
double SpatialModel::voiceAmount() const { return shownValue(engine_.spatial().voiceAmount); }
void SpatialModel::setVoiceAmount(double value) {
    set(&SpatialConfig::voiceAmount, value, "Voice amount");
}
double SpatialModel::voicePresenceGainDB() const {
    return shownValue(engine_.spatial().voicePresenceGainDB);
}
void SpatialModel::setVoicePresenceGainDB(double value) {
    set(&SpatialConfig::voicePresenceGainDB, value, "Voice presence");
}
double SpatialModel::voiceMudCutDB() const { return shownValue(engine_.spatial().voiceMudCutDB); }
void SpatialModel::setVoiceMudCutDB(double value) {
    set(&SpatialConfig::voiceMudCutDB, value, "Voice mud cut");
}
bool SpatialModel::voiceAdaptiveEnabled() const { return engine_.spatial().voiceAdaptiveEnabled; }
void SpatialModel::setVoiceAdaptiveEnabled(bool value) {
    set(&SpatialConfig::voiceAdaptiveEnabled, value, "Adaptive voice switch");
}
double SpatialModel::toneBassDB() const { return shownValue(engine_.spatial().toneBassDB); }
void SpatialModel::setToneBassDB(double value) {
    set(&SpatialConfig::toneBassDB, value, "Bass tone");
}
double SpatialModel::toneMidDB() const { return shownValue(engine_.spatial().toneMidDB); }
void SpatialModel::setToneMidDB(double value) { set(&SpatialConfig::toneMidDB, value, "Mid tone"); }
double SpatialModel::toneTrebleDB() const { return shownValue(engine_.spatial().toneTrebleDB); }
void SpatialModel::setToneTrebleDB(double value) {
    set(&SpatialConfig::toneTrebleDB, value, "Treble tone");
}

int SpatialModel::reverbPresetIndex() const {
    return static_cast<int>(engine_.spatial().reverbPreset);
}

void SpatialModel::setReverbPresetIndex(int index) {
    constexpr auto &all = SpatialConfig::allReverbPresets;
    if (index < 0 || static_cast<std::size_t>(index) >= all.size() || index == reverbPresetIndex())
        return;
    history_.edit("Reverb preset", [&] {
        SpatialConfig spatial = engine_.spatial();
        spatial.reverbPreset = all[static_cast<std::size_t>(index)];
        engine_.setSpatial(spatial);
    });
}

QStringList SpatialModel::reverbPresetTitles() {
    QStringList titles;
    for (const auto preset : SpatialConfig::allReverbPresets) {
        const std::string_view name = title(preset);
        titles << QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    }
    return titles;
}

int SpatialModel::enabledCount() const { return spatialStagesOn(engine_.spatial()); }

void SpatialModel::resetTone() {
    history_.edit("Tone reset", [&] {
        SpatialConfig spatial = engine_.spatial();
        spatial.toneBassDB = 0.0F;
        spatial.toneMidDB = 0.0F;
        spatial.toneTrebleDB = 0.0F;
        engine_.setSpatial(spatial);
    });
}

void SpatialModel::set(float SpatialConfig::*field, double value, const char *what) {
    SpatialConfig spatial = engine_.spatial();
    if (!std::isfinite(value) || spatial.*field == settingValue(value))
        return;
    history_.edit(what, [&] {
        spatial.*field = settingValue(value);
        engine_.setSpatial(spatial);
    });
}

void SpatialModel::set(bool SpatialConfig::*field, bool value, const char *what) {
    SpatialConfig spatial = engine_.spatial();
    if (spatial.*field == value)
        return;
    history_.edit(what, [&] {
        spatial.*field = value;
        engine_.setSpatial(spatial);
    });
}

} // namespace quorbel
