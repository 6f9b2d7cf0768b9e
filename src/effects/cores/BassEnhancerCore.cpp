#include "effects/cores/BassEnhancerCore.h"

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
    // The dry sound gives way as the harmonics come in, so that the level stays about the same.
    const float a = amount > 0.0F ? std::min(amount, 1.0F) : 0.0F;
    addBassHarmonics({.lowPass = filters.lowPass,
                      .highPass = filters.highPass,
                      .drive = drive,
                      .wet = 1.8F * a,
                      .total = 1.0F + 0.8F * a},
                     sections_, left, right, frames);
}

} // namespace quorbel
