#include "effects/cores/BassEnhancerCore.h"

#include "effects/cores/TanhShaper.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel {

namespace {

void addBassHarmonics(const BassHarmonics &h, BiquadState &lowPass, BiquadState &highPass,
                      float *samples, std::uint32_t frames) noexcept {
    constexpr std::uint32_t tileFrames = 8;
    BiquadState low = lowPass;
    BiquadState high = highPass;
    for (std::uint32_t begin = 0; begin < frames; begin += tileFrames) {
        const std::uint32_t count = std::min(tileFrames, frames - begin);
        float *const x = samples + begin;
        float bass[tileFrames];
        for (std::uint32_t i = 0; i < count; ++i)
            bass[i] = low.process(h.lowPass, x[i]);
        shapeByTanh(bass, count, h.drive);
        for (std::uint32_t i = 0; i < count; ++i)
            x[i] = (x[i] + h.wet * high.process(h.highPass, bass[i])) / h.total;
    }
    lowPass = low;
    highPass = high;
}

} // namespace

void BassEnhancerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    clear();
}

BassHarmonics BassEnhancerCore::designed(float amount, float drive, float crossoverHz) noexcept {
    const Filters &filters = filters_.of(
        [](float crossover, float sampleRate) {
            constexpr float twoPi = 2.0F * std::numbers::pi_v<float>;
            constexpr float twiceQ = 1.414F;
            const float lowW0 = twoPi * crossover / sampleRate;
            const float highW0 = twoPi * 1.5F * crossover / sampleRate;
            return Filters{.lowPass = lowPass(lowW0, std::sin(lowW0) / twiceQ),
                           .highPass = highPass(highW0, std::sin(highW0) / twiceQ)};
        },
        crossoverHz, sampleRate_);
    // Attenuates the dry sound as the harmonics come in, to keep the level about constant.
    const float a = amount > 0.0F ? std::min(amount, 1.0F) : 0.0F;
    return {.lowPass = filters.lowPass,
            .highPass = filters.highPass,
            .drive = drive,
            .wet = 1.8F * a,
            .total = 1.0F + 0.8F * a};
}

void addBassHarmonics(const BassHarmonics &harmonics, BassSections &sections, float *left,
                      float *right, std::uint32_t frames) noexcept {
    addBassHarmonics(harmonics, sections.lowPass.left, sections.highPass.left, left, frames);
    addBassHarmonics(harmonics, sections.lowPass.right, sections.highPass.right, right, frames);
}

} // namespace quorbel
