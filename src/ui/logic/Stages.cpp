#include "ui/logic/Stages.h"

#include <algorithm>

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

const std::array<StageHelp, 12> &stageHelps() {
    static constexpr std::array<StageHelp, 12> helps{{
        {"Equalizer", "Ten bands raise or lower parts of the frequency range, by up to 12 dB each, "
                      "from 20 Hz to 20 kHz."},
        {"Tone Controls",
         "Three knobs correct the balance quickly, after the equalizer, by up to 12 dB "
         "each."},
        {"Deep Bass", "Adds harmonics of the bass, so that small speakers seem to play notes below "
                      "their range; on large speakers it may sound rough."},
        {"Voice Clarity",
         "Lowers 300 Hz by up to 4 dB and raises 3 kHz by up to 6 dB, so that speech is "
         "easier to understand; music sounds forward."},
        {"Stereo Widening",
         "Scales the difference of the two channels from none (mono) to double; above "
         "100 % mono playback gets weaker."},
        {"XTC Shuffler",
         "Makes speakers seem further apart, with up to 3.5 dB more difference of the "
         "channels; it is meant for speakers."},
        {"Reverb",
         "Adds the ambience of a room, up to 60 % of the sound; more of it blurs speech."},
        {"Saturation",
         "Adds harmonics by soft clipping; quiet sound becomes louder by up to 3.5 dB, "
         "and high drives distort audibly."},
        {"Crossfeed",
         "Mixes a delayed, darker copy of each channel into the other, for headphones; "
         "the image becomes narrower."},
        {"Auto-Gain",
         "Moves the level slowly towards a target, by at most 12 dB, so that quiet and "
         "loud pieces sound alike."},
        {"Manual Loudness",
         "Adds a fixed gain of -12 to +12 dB that follows nothing; without the limiter a "
         "positive one can clip."},
        {"Master Limiter",
         "Lowers peaks before they leave, so that no sample is beyond the threshold; it "
         "delays the sound by 1.3 ms, and much reduction sounds dense."},
    }};
    return helps;
}

std::string_view stageHelp(std::string_view stage) {
    const auto found = std::ranges::find(stageHelps(), stage, &StageHelp::stage);
    return found == stageHelps().end() ? std::string_view() : found->help;
}

} // namespace quorbel
