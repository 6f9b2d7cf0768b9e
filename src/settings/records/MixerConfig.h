#pragma once

namespace quorbel {

/// Settings of the stages around the equaliser and of the display; not part of presets. Fields are
/// in the order of the settings file.
struct MixerConfig {
    // Kept for the settings file; no time and pitch stage exists.
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

    bool spectrumEnabled = true; ///< display only

    friend bool operator==(const MixerConfig &, const MixerConfig &) = default;
};

} // namespace quorbel
