#include "effects/cores/Saturation.h"

#include <cmath>

namespace quorbel {

void saturate(float *left, float *right, std::uint32_t frames, const LinearRamp &drive) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float d = drive.at(i);
        const float k = 1.0F + 3.0F * d;
        const float dry = 1.0F - 0.5F * d;
        left[i] = left[i] * dry + d * std::tanh(k * left[i]) / k;
        right[i] = right[i] * dry + d * std::tanh(k * right[i]) / k;
    }
}

} // namespace quorbel
