#include "effects/cores/MidSide.h"

namespace quorbel {

void widen(float *left, float *right, std::uint32_t frames, const LinearRamp &width) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float mid = (left[i] + right[i]) * 0.5F;
        const float side = width.at(i) * (left[i] - right[i]) * 0.5F;
        left[i] = mid + side;
        right[i] = mid - side;
    }
}

} // namespace quorbel
