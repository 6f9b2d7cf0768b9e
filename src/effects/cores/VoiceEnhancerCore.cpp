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

    // Both channels in one loop: neither recursion has to wait for the other.
    Channel l = channels_[0];
    Channel r = channels_[1];
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float shapedL = l.presence.process(presence, l.mud.process(mud, left[i]));
        const float shapedR = r.presence.process(presence, r.mud.process(mud, right[i]));
        left[i] = left[i] + mix * (shapedL - left[i]);
        right[i] = right[i] + mix * (shapedR - right[i]);
    }
    channels_[0] = l;
    channels_[1] = r;
}

} // namespace quorbel
