#include "effects/cores/BassEnhancerCore.h"

#include "effects/cores/TanhShaper.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel {

void BassEnhancerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    clear();
}

void BassEnhancerCore::process(float *left, float *right, std::uint32_t frames, float amount,
                               float drive, float crossoverHz) noexcept {
    constexpr float twoPi = 2.0F * std::numbers::pi_v<float>;
    constexpr float twiceQ = 1.414F;
    const float lowW0 = twoPi * crossoverHz / sampleRate_;
    const float highW0 = twoPi * 1.5F * crossoverHz / sampleRate_;
    const BiquadCoefficients low = lowPass(lowW0, std::sin(lowW0) / twiceQ);
    const BiquadCoefficients high = highPass(highW0, std::sin(highW0) / twiceQ);

    // The dry sound gives way as the harmonics come in, so that the level stays about the same.
    const float a = amount > 0.0F ? std::min(amount, 1.0F) : 0.0F;
    const float wet = 1.8F * a;
    const float total = 1.0F + 0.8F * a;

    // In short tiles, the high-pass one tile behind the low-pass, so that all four recursions run
    // side by side; between them the shaper, which takes several frames at once.
    constexpr std::uint32_t tile = 32;
    float dry[2 * tile];
    float bass[2][2 * tile];
    float harmonics[2 * tile];
    std::uint32_t behind = 0; // frames of the tile before
    for (std::uint32_t begin = 0, turn = 0; begin < frames || behind > 0;
         begin += tile, turn = 1 - turn) {
        const std::uint32_t count = begin < frames ? std::min(tile, frames - begin) : 0;
        if (count > 0)
            interleave(left + begin, right + begin, count, dry);
        processSections({low, lowPass_, dry, bass[turn], count},
                        {high, highPass_, bass[1 - turn], harmonics, behind});
        shapeByTanh(bass[turn], 2 * count, drive);
        const std::uint32_t beginBehind = behind > 0 ? begin - tile : 0;
        float *const l = left + beginBehind;
        float *const r = right + beginBehind;
        for (std::uint32_t i = 0; i < behind; ++i) {
            l[i] = (l[i] + wet * harmonics[2 * i]) / total;
            r[i] = (r[i] + wet * harmonics[2 * i + 1]) / total;
        }
        behind = count;
    }
}

} // namespace quorbel
