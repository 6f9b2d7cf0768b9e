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

/// Processes whole fours, at least one; the presence section lags the mud section by four frames.
void clarifyFours(const VoiceClarity &clarity, VoiceSections &sections, float *left, float *right,
                  std::uint32_t frames) noexcept {
    // Lanes: left and right of the mud section, then of the presence section.
    FourFrames lanes{};
    for (std::uint32_t i = 0; i < 4; ++i)
        lanes.frame[i] = FourFloats{sections.mud.left.process(clarity.mud, left[i]),
                                    sections.mud.right.process(clarity.mud, right[i])};
    const auto mix = [&](float *samples, FourFloats shaped) {
        const FourFloats dry = loadFour(samples);
        storeFour(dry + clarity.mix * (shaped - dry), samples);
    };
    SectionPair pair(clarity.mud, sections.mud, clarity.presence, sections.presence);
    for (std::uint32_t begin = 4; begin < frames; begin += 4) {
        lanes =
            FourFrames::of(loadFour(left + begin), loadFour(right + begin), lanes).through(pair);
        const FourFrames::Channels shaped = lanes.second();
        mix(left + begin - 4, shaped.left);
        mix(right + begin - 4, shaped.right);
    }
    pair.save(sections.mud, sections.presence);
    for (std::uint32_t i = 0; i < 4; ++i) {
        const std::uint32_t at = frames - 4 + i;
        const float shapedL = sections.presence.left.process(clarity.presence, lanes.frame[i][0]);
        const float shapedR = sections.presence.right.process(clarity.presence, lanes.frame[i][1]);
        left[at] = left[at] + clarity.mix * (shapedL - left[at]);
        right[at] = right[at] + clarity.mix * (shapedR - right[at]);
    }
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

void clarifySideBySide(const VoiceClarity &clarity, VoiceSections &sections, float *left,
                       float *right, std::uint32_t frames) noexcept {
    const std::uint32_t fours = frames - frames % 4;
    if (fours > 0)
        clarifyFours(clarity, sections, left, right, fours);
    clarify(clarity, sections, left + fours, right + fours, frames - fours);
}

} // namespace quorbel
