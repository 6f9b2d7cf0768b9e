#include "effects/cores/VoiceEnhancerCore.h"

#include <algorithm>
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

    // The presence filter follows the mud filter by a few frames, so that all four recursions run
    // side by side.
    constexpr std::uint32_t stretch = 128;
    constexpr std::uint32_t lag = 8;
    float dry[2 * stretch];
    float cleared[2 * stretch];
    float shaped[2 * stretch];
    for (std::uint32_t begin = 0; begin < frames; begin += stretch) {
        const std::uint32_t count = std::min(stretch, frames - begin);
        const std::uint32_t ahead = std::min(lag, count);
        const std::uint32_t rest = count - ahead;
        float *const l = left + begin;
        float *const r = right + begin;
        interleave(l, r, count, dry);
        processSection({mud, mud_, dry, cleared, ahead});
        processSections({mud, mud_, dry + 2 * ahead, cleared + 2 * ahead, rest},
                        {presence, presence_, cleared, shaped, rest});
        processSection({presence, presence_, cleared + 2 * rest, shaped + 2 * rest, ahead});
        for (std::uint32_t i = 0; i < count; ++i) {
            l[i] = l[i] + mix * (shaped[2 * i] - l[i]);
            r[i] = r[i] + mix * (shaped[2 * i + 1] - r[i]);
        }
    }
}

} // namespace quorbel
