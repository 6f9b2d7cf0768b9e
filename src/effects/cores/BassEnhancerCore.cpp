#include "effects/cores/BassEnhancerCore.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel {

void BassEnhancerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    channels_ = {};
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

    float *const samples[] = {left, right};
    for (std::size_t c = 0; c < channels_.size(); ++c) {
        Channel channel = channels_[c];
        float *const x = samples[c];
        for (std::uint32_t i = 0; i < frames; ++i) {
            const float bass = channel.lowPass.process(low, x[i]);
            const float shaped = std::tanh(drive * bass) / drive;
            const float harmonics = channel.highPass.process(high, shaped);
            x[i] = (x[i] + wet * harmonics) / total;
        }
        channels_[c] = channel;
    }
}

} // namespace quorbel
