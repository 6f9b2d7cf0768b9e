#include "effects/cores/VoiceEnhancerCore.h"

#include <cmath>

namespace quorbel {

void VoiceEnhancerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    clear();
}

void VoiceEnhancerCore::process(float *left, float *right, std::uint32_t frames, float mix,
                                float presenceDB, float mudDB) noexcept {
    const float mudW0 = 1884.9554F / sampleRate_;      // 2π · 300 Hz
    const float presenceW0 = 18849.555F / sampleRate_; // 2π · 3000 Hz
    const BiquadCoefficients mud =
        peaking(mudW0, std::sin(mudW0) * 0.5F, std::pow(10.0F, -mudDB / 40.0F)); // Q 1
    const BiquadCoefficients presence = peaking(presenceW0, std::sin(presenceW0) / 2.4F,
                                                std::pow(10.0F, presenceDB / 40.0F)); // Q 1.2

    float *const samples[] = {left, right};
    for (std::size_t c = 0; c < channels_.size(); ++c) {
        Channel channel = channels_[c];
        float *const x = samples[c];
        for (std::uint32_t i = 0; i < frames; ++i) {
            const float cut = channel.mud.process(mud, x[i]);
            const float shaped = channel.presence.process(presence, cut);
            x[i] = x[i] + mix * (shaped - x[i]);
        }
        channels_[c] = channel;
    }
}

} // namespace quorbel
