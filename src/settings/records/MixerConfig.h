#pragma once

namespace quorbel {

/// The settings of the stages before and after the equaliser and of the display. Presets do not
/// carry it. Fields are in the order of the settings file.
struct MixerConfig {
    // Kept and stored; no time and pitch stage exists.
    bool tempoChainEnabled = false;
    float tempoRate = 1.0F;
    float pitchSemitones = 0.0F;

    bool saturationEnabled = false;
    float saturationDrive = 30.0F;

    bool crossfeedEnabled = false;
    float crossfeedAmount = 50.0F; ///< percent

    bool limiterEnabled = true;
    float limiterThresholdDB = -0.3F; ///< dBFS

    bool autoGainEnabled = false;
    float autoGainTargetDB = -16.0F;

    bool manualLoudnessEnabled = false;
    float manualLoudnessDB = 0.0F;

    bool spectrumEnabled = true; ///< display only, never touches the sound

    friend bool operator==(const MixerConfig &, const MixerConfig &) = default;
};

} // namespace quorbel
