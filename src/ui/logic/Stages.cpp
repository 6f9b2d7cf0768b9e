#include "ui/logic/Stages.h"

namespace quorbel {

namespace {

template <typename... Switches> int countOn(Switches... switches) { return (0 + ... + switches); }

} // namespace

int spatialStagesOn(const SpatialConfig &spatial) {
    return countOn(spatial.widenerEnabled, spatial.xtcEnabled, spatial.reverbEnabled,
                   spatial.bassEnabled, spatial.voiceEnabled);
}

int colourStagesOn(const MixerConfig &mixer) {
    return countOn(mixer.saturationEnabled, mixer.crossfeedEnabled);
}

int levelStagesOn(const MixerConfig &mixer) {
    return countOn(mixer.limiterEnabled, mixer.autoGainEnabled, mixer.manualLoudnessEnabled);
}

} // namespace quorbel
