#include "effects/cores/MidSide.h"

namespace quorbel {

namespace {

template <typename Width>
void widenBy(const Width &width, float *left, float *right, std::uint32_t frames) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float mid = (left[i] + right[i]) * 0.5F;
        const float side = width(i) * (left[i] - right[i]) * 0.5F;
        left[i] = mid + side;
        right[i] = mid - side;
    }
}

} // namespace

void widen(float *left, float *right, std::uint32_t frames, const LinearRamp &width,
           std::uint32_t begin) noexcept {
    // The ramp's division is the bottleneck; a constant width needs none.
    if (width.step() == 0.0F)
        widenBy([at = width.from()](std::uint32_t) { return at; }, left, right, frames);
    else
        widenBy([width, begin](std::uint32_t i) { return width.at(begin + i); }, left, right,
                frames);
}

} // namespace quorbel
