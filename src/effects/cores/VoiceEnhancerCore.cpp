#include "effects/cores/VoiceEnhancerCore.h"

#include <cmath>

namespace quorbel {

namespace {

void clarify(const VoiceClarity &clarity, BiquadState &mudState, BiquadState &presenceState,
             float *samples, std::uint32_t frames) noexcept {
    BiquadState mud = mudState;
    BiquadState presence = presenceState;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float cleared = mud.process(clarity.mud, samples[i]);
        const float shaped = presence.process(clarity.presence, cleared);
        samples[i] = samples[i] + clarity.mix * (shaped - samples[i]);
    }
    mudState = mud;
    presenceState = presence;
}

} // namespace

void VoiceEnhancerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    clear();
}

VoiceClarity VoiceEnhancerCore::designed(float mix, float presenceDB, float mudDB) noexcept {
    const auto mudFilter = [](float sampleRate, float cutDB) {
        const float w0 = 1884.9554F / sampleRate;                                 // 2π · 300 Hz
        return peaking(w0, std::sin(w0) * 0.5F, std::pow(10.0F, -cutDB / 40.0F)); // Q 1
    };
    const auto presenceFilter = [](float sampleRate, float boostDB) {
        const float w0 = 18849.555F / sampleRate;                                  // 2π · 3000 Hz
        return peaking(w0, std::sin(w0) / 2.4F, std::pow(10.0F, boostDB / 40.0F)); // Q 1.2
    };
    return {.mud = mudCoefficients_.of(mudFilter, sampleRate_, mudDB),
            .presence = presenceCoefficients_.of(presenceFilter, sampleRate_, presenceDB),
            .mix = mix};
}

void clarify(const VoiceClarity &clarity, VoiceSections &sections, float *left, float *right,
             std::uint32_t frames) noexcept {
    clarify(clarity, sections.mud.left, sections.presence.left, left, frames);
    clarify(clarity, sections.mud.right, sections.presence.right, right, frames);
}

} // namespace quorbel
