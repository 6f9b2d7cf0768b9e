#include "effects/cores/VoiceDetector.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

std::optional<float> VoiceDetector::voiceRatio(const SampleRing &ring, std::uint64_t end,
                                               float sampleRate) {
    constexpr double smallestPower = 1.0;
    constexpr int lastBin = static_cast<int>(PowerSpectrum::bins) - 1;

    if (!ring.snapshot(end, spectrum_.samples()))
        return std::nullopt;
    spectrum_.transform();

    const float binHz = sampleRate / static_cast<float>(PowerSpectrum::points);
    const int low = std::max(static_cast<int>(std::ceil(60.0F / binHz)), 1);
    const int high = std::min(static_cast<int>(std::floor(10'000.0F / binHz)), lastBin);
    const int voiceLow = std::max(low, static_cast<int>(std::ceil(300.0F / binHz)));
    const int voiceHigh = std::min(high, static_cast<int>(std::floor(4000.0F / binHz)));
    if (high <= low || voiceHigh <= voiceLow)
        return std::nullopt;

    const auto powerBetween = [this](int first, int last) {
        return first > last ? 0.0
                            : spectrum_.powerBetween(static_cast<std::size_t>(first),
                                                     static_cast<std::size_t>(last));
    };
    const double voice = powerBetween(voiceLow, voiceHigh);
    const double total =
        powerBetween(low, voiceLow - 1) + voice + powerBetween(voiceHigh + 1, high);
    if (!(total > smallestPower))
        return std::nullopt;
    return static_cast<float>(voice / total);
}

float VoiceDetector::confidenceFor(float ratio) noexcept {
    return std::clamp((ratio - 0.3F) / 0.3F, 0.0F, 1.0F);
}

} // namespace quorbel
