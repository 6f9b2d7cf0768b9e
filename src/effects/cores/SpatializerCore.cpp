#include "effects/cores/SpatializerCore.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

void SpatializerCore::prepare(float sampleRate) noexcept {
    sampleRate_ = sampleRate;
    clear();
}

SideDip SpatializerCore::designed(float amount, float notchHz) noexcept {
    // The section is unstable above half the sample rate. From 18 kHz up the clamp never acts.
    const float centreHz = std::min(notchHz, 0.45F * sampleRate_);
    const BiquadCoefficients &coefficients = dip_.of(
        [](float share, float hz, float sampleRate) {
            const float amplitude =
                std::pow(10.0F, (2.0F * (-3.0F * share)) / 40.0F); // −6·share dB
            const float w0 = 6.283185F * hz / sampleRate;
            return peaking(w0, std::sin(w0) / 2.4F, amplitude); // Q 1.2
        },
        amount, centreHz, sampleRate_);
    return {.sideGain = 1.0F + 0.5F * amount, .coefficients = coefficients};
}

void spatialize(const SideDip &dip, BiquadState &side, float *left, float *right,
                std::uint32_t frames) noexcept {
    BiquadState state = side;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float mid = (left[i] + right[i]) * 0.5F;
        const float filtered =
            state.process(dip.coefficients, dip.sideGain * (left[i] - right[i]) * 0.5F);
        left[i] = mid + filtered;
        right[i] = mid - filtered;
    }
    side = state;
}

} // namespace quorbel
