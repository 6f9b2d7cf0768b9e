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

    // In three passes over short stretches: the recursions of both channels side by side, and
    // between them the shaper, which takes several frames at once.
    constexpr std::uint32_t stretch = 128;
    float bassL[stretch];
    float bassR[stretch];
    Channel l = channels_[0];
    Channel r = channels_[1];
    for (std::uint32_t begin = 0; begin < frames; begin += stretch) {
        const std::uint32_t count = std::min(stretch, frames - begin);
        float *const x = left + begin;
        float *const y = right + begin;
        for (std::uint32_t i = 0; i < count; ++i) {
            bassL[i] = l.lowPass.process(low, x[i]);
            bassR[i] = r.lowPass.process(low, y[i]);
        }
        shapeByTanh(bassL, count, drive);
        shapeByTanh(bassR, count, drive);
        for (std::uint32_t i = 0; i < count; ++i) {
            x[i] = (x[i] + wet * l.highPass.process(high, bassL[i])) / total;
            y[i] = (y[i] + wet * r.highPass.process(high, bassR[i])) / total;
        }
    }
    channels_[0] = l;
    channels_[1] = r;
}

} // namespace quorbel
