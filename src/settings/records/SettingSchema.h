#pragma once

#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <string_view>
#include <variant>

// One row per setting of the two records drives the JSON form, the window's model and the control.
// A new setting needs a field, a row and a place on a screen. Defaults are the fields' initial
// values.

namespace quorbel {

/// Presence of a key in a file. A missing optional key leaves the default.
enum class Presence { required, optional };

/// Display unit of a number.
enum class SettingUnit {
    none,
    percent,
    hertz,
    decibels,
    gain, ///< signed decibels
    decibelsFullScale,
};

/// Range, step and unit of a number's control. Records do not clamp, so values may be out of range.
struct SettingScale {
    float from = 0.0F;
    float to = 1.0F;
    float step = 1.0F;
    SettingUnit unit = SettingUnit::none;
    float neutral = from; ///< start of a slider's highlighted part
};

/// Pointer to a setting's field in its record, by the field's type.
template <class Record> struct SettingField {
    using Type = std::variant<bool Record::*, float Record::*>;
};
template <> struct SettingField<SpatialConfig> {
    using Type = std::variant<bool SpatialConfig::*, float SpatialConfig::*,
                              SpatialConfig::ReverbPreset SpatialConfig::*>;
};

template <class Record> struct Setting {
    std::string_view key; ///< in the settings file
    typename SettingField<Record>::Type field;
    Presence presence{};
    std::string_view label;      ///< caption of its control
    std::string_view stage = {}; ///< caption of its stage; empty for the switch of a stage
    SettingScale scale = {};     ///< for numbers
};

// clang-format off
/// In the order of the settings file.
inline constexpr Setting<MixerConfig> mixerSettings[] = {
    // The three of tempo and pitch are kept for the settings file; no stage or screen uses them.
    {"tempoChainEnabled", &MixerConfig::tempoChainEnabled, Presence::optional, "Tempo"},
    {"tempoRate", &MixerConfig::tempoRate, Presence::optional, "Tempo rate"},
    {"pitchSemitones", &MixerConfig::pitchSemitones, Presence::optional, "Pitch"},
    {"saturationEnabled", &MixerConfig::saturationEnabled, Presence::optional, "Saturation"},
    {"saturationDrive", &MixerConfig::saturationDrive, Presence::optional, "Drive", "Saturation",
     {.from = 0, .to = 100}},
    {"crossfeedEnabled", &MixerConfig::crossfeedEnabled, Presence::optional, "Crossfeed"},
    {"crossfeedAmount", &MixerConfig::crossfeedAmount, Presence::optional, "Amount", "Crossfeed",
     {.from = 0, .to = 100}},
    {"limiterEnabled", &MixerConfig::limiterEnabled, Presence::optional, "Master Limiter"},
    {"limiterThresholdDB", &MixerConfig::limiterThresholdDB, Presence::optional, "Threshold", "Master Limiter",
     {.from = -12, .to = 0, .step = 0.1F, .unit = SettingUnit::decibelsFullScale}},
    {"autoGainEnabled", &MixerConfig::autoGainEnabled, Presence::optional, "Auto-Gain"},
    {"autoGainTargetDB", &MixerConfig::autoGainTargetDB, Presence::optional, "Target", "Auto-Gain",
     {.from = -30, .to = -6, .step = 0.1F, .unit = SettingUnit::decibels}},
    {"manualLoudnessEnabled", &MixerConfig::manualLoudnessEnabled, Presence::optional, "Manual Loudness"},
    {"manualLoudnessDB", &MixerConfig::manualLoudnessDB, Presence::optional, "Trim", "Manual Loudness",
     {.from = -12, .to = 12, .step = 0.1F, .unit = SettingUnit::gain, .neutral = 0}},
    {"spectrumEnabled", &MixerConfig::spectrumEnabled, Presence::optional, "Spectrum analyzer (visual only)"},
};

/// In the order of the settings file. Older files lack bass, voice and tone.
inline constexpr Setting<SpatialConfig> spatialSettings[] = {
    {"widenerEnabled", &SpatialConfig::widenerEnabled, Presence::required, "Stereo Widening"},
    {"widthPercent", &SpatialConfig::widthPercent, Presence::required, "Width", "Stereo Widening",
     {.from = 0, .to = 200, .unit = SettingUnit::percent, .neutral = 100}},
    {"xtcEnabled", &SpatialConfig::xtcEnabled, Presence::required, "XTC Shuffler"},
    {"xtcAmount", &SpatialConfig::xtcAmount, Presence::required, "XTC Amount", "XTC Shuffler",
     {.from = 0, .to = 100}},
    {"xtcNotchFrequency", &SpatialConfig::xtcNotchFrequency, Presence::required, "Head-width Notch", "XTC Shuffler",
     {.from = 500, .to = 8000, .step = 10, .unit = SettingUnit::hertz}},
    {"reverbEnabled", &SpatialConfig::reverbEnabled, Presence::required, "Reverb"},
    {"reverbMix", &SpatialConfig::reverbMix, Presence::required, "Wet Mix", "Reverb",
     {.from = 0, .to = 60, .unit = SettingUnit::percent}},
    {"reverbPreset", &SpatialConfig::reverbPreset, Presence::required, "Preset", "Reverb"},
    {"bassEnabled", &SpatialConfig::bassEnabled, Presence::optional, "Deep Bass"},
    {"bassAmount", &SpatialConfig::bassAmount, Presence::optional, "Amount", "Deep Bass",
     {.from = 0, .to = 100}},
    {"bassDrive", &SpatialConfig::bassDrive, Presence::optional, "Drive", "Deep Bass",
     {.from = 1, .to = 8, .step = 0.1F}},
    {"bassCrossover", &SpatialConfig::bassCrossover, Presence::optional, "Crossover", "Deep Bass",
     {.from = 40, .to = 150, .unit = SettingUnit::hertz}},
    {"bassAdaptiveEnabled", &SpatialConfig::bassAdaptiveEnabled, Presence::optional,
     "Adaptive — track song’s bass fundamental"},
    {"voiceEnabled", &SpatialConfig::voiceEnabled, Presence::optional, "Voice Clarity"},
    {"voiceAmount", &SpatialConfig::voiceAmount, Presence::optional, "Amount", "Voice Clarity",
     {.from = 0, .to = 100}},
    {"voicePresenceGainDB", &SpatialConfig::voicePresenceGainDB, Presence::optional, "Presence @ 3 kHz", "Voice Clarity",
     {.from = 0, .to = 6, .step = 0.1F, .unit = SettingUnit::gain}},
    {"voiceMudCutDB", &SpatialConfig::voiceMudCutDB, Presence::optional, "Mud cut @ 300 Hz", "Voice Clarity",
     {.from = 0, .to = 4, .step = 0.1F, .unit = SettingUnit::decibels}},
    {"voiceAdaptiveEnabled", &SpatialConfig::voiceAdaptiveEnabled, Presence::optional,
     "Adaptive scaling (experimental)"},
    {"toneBassDB", &SpatialConfig::toneBassDB, Presence::optional, "Bass", "Tone Controls",
     {.from = -12, .to = 12, .step = 0.1F, .unit = SettingUnit::gain, .neutral = 0}},
    {"toneMidDB", &SpatialConfig::toneMidDB, Presence::optional, "Mid", "Tone Controls",
     {.from = -12, .to = 12, .step = 0.1F, .unit = SettingUnit::gain, .neutral = 0}},
    {"toneTrebleDB", &SpatialConfig::toneTrebleDB, Presence::optional, "Treble", "Tone Controls",
     {.from = -12, .to = 12, .step = 0.1F, .unit = SettingUnit::gain, .neutral = 0}},
};
// clang-format on

} // namespace quorbel
