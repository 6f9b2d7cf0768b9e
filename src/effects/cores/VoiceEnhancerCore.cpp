#include "effects/cores/VoiceEnhancerCore.h"

#include <cmath>

namespace quorbel {

namespace {

/// A mud filter, the presence filter that follows it, and the mix of their sound into the dry one.
struct Clarity {
    BiquadCoefficients mudCoefficients;
    BiquadCoefficients presenceCoefficients;
    float mix;
    StereoSection &mud;
    StereoSection &presence;

    template <typename Samples>
    [[gnu::always_inline]] Samples mixed(Samples dry, Samples shaped) const noexcept {
        return dry + mix * (shaped - dry);
    }
};

void clarifyPlainly(const Clarity &clarity, float *left, float *right,
                    std::uint32_t frames) noexcept {
    const auto processed = [&](BiquadState &mud, BiquadState &presence, float x) {
        const float cleared = mud.process(clarity.mudCoefficients, x);
        return clarity.mixed(x, presence.process(clarity.presenceCoefficients, cleared));
    };
    for (std::uint32_t i = 0; i < frames; ++i) {
        left[i] = processed(clarity.mud.left, clarity.presence.left, left[i]);
        right[i] = processed(clarity.mud.right, clarity.presence.right, right[i]);
    }
}

/// The same for any number of four frames, with the presence filter four frames behind the mud
/// filter, so that all four recursions run side by side.
void clarifyFours(const Clarity &clarity, float *left, float *right,
                  std::uint32_t frames) noexcept {
    FourFrames cleared;
    for (std::uint32_t i = 0; i < 4; ++i)
        cleared.frame[i] = FourFloats{clarity.mud.left.process(clarity.mudCoefficients, left[i]),
                                      clarity.mud.right.process(clarity.mudCoefficients, right[i])};

    const auto mix = [&](std::uint32_t begin, FourFrames::Channels shaped) {
        storeFour(clarity.mixed(loadFour(left + begin), shaped.left), left + begin);
        storeFour(clarity.mixed(loadFour(right + begin), shaped.right), right + begin);
    };
    SectionPair sections(clarity.mudCoefficients, clarity.mud, clarity.presenceCoefficients,
                         clarity.presence);
    for (std::uint32_t begin = 4; begin < frames; begin += 4) {
        cleared = FourFrames::of(loadFour(left + begin), loadFour(right + begin), cleared)
                      .through(sections);
        mix(begin - 4, cleared.second());
    }
    sections.save(clarity.mud, clarity.presence);

    FourFrames shaped;
    for (std::uint32_t i = 0; i < 4; ++i)
        shaped.frame[i] = FourFloats{
            clarity.presence.left.process(clarity.presenceCoefficients, cleared.frame[i][0]),
            clarity.presence.right.process(clarity.presenceCoefficients, cleared.frame[i][1])};
    mix(frames - 4, shaped.first());
}

} // namespace

void VoiceEnhancerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    clear();
}

void VoiceEnhancerCore::process(float *left, float *right, std::uint32_t frames, float mix,
                                float presenceDB, float mudDB) noexcept {
    const auto mudFilter = [](float sampleRate, float cutDB) {
        const float w0 = 1884.9554F / sampleRate;                                 // 2π · 300 Hz
        return peaking(w0, std::sin(w0) * 0.5F, std::pow(10.0F, -cutDB / 40.0F)); // Q 1
    };
    const auto presenceFilter = [](float sampleRate, float boostDB) {
        const float w0 = 18849.555F / sampleRate;                                  // 2π · 3000 Hz
        return peaking(w0, std::sin(w0) / 2.4F, std::pow(10.0F, boostDB / 40.0F)); // Q 1.2
    };
    const Clarity clarity{.mudCoefficients = mudCoefficients_.of(mudFilter, sampleRate_, mudDB),
                          .presenceCoefficients =
                              presenceCoefficients_.of(presenceFilter, sampleRate_, presenceDB),
                          .mix = mix,
                          .mud = mud_,
                          .presence = presence_};

    const std::uint32_t fours = frames - frames % 4;
    if (fours > 0)
        clarifyFours(clarity, left, right, fours);
    clarifyPlainly(clarity, left + fours, right + fours, frames - fours);
}

} // namespace quorbel
