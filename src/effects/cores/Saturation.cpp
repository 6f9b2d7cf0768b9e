#include "effects/cores/Saturation.h"

#include "platform/dsp/VectorTargets.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/Saturation.cpp"
// Highway requires this order.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "effects/cores/TanhShaper-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, 16>;
using Vector = hn::Vec<Tag>;
constexpr Tag tag;

/// The transfer curve for one drive.
struct Shape {
    HWY_INLINE explicit Shape(Vector drive)
        : wet(drive), k(hn::Add(hn::Set(tag, 1.0F), hn::Mul(hn::Set(tag, 3.0F), drive))),
          dry(hn::Sub(hn::Set(tag, 1.0F), hn::Mul(hn::Set(tag, 0.5F), drive))) {}

    HWY_INLINE Vector operator()(Vector x) const {
        const TanhFraction<Vector> tanh = tanhFraction(hn::Mul(k, x));
        return hn::Add(hn::Mul(x, dry),
                       hn::Div(hn::Mul(wet, tanh.numerator), hn::Mul(tanh.denominator, k)));
    }

    Vector wet;
    Vector k;
    Vector dry;
};

HWY_INLINE void shape(const Shape &shaped, float *samples) {
    hn::StoreU(shaped(hn::LoadU(tag, samples)), tag, samples);
}

} // namespace

// Not noexcept, which Highway's dispatch table does not accept; nothing in it throws.
void saturateInLanes(float *left, float *right, std::uint32_t frames, const LinearRamp &drive) {
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    const Vector from = hn::Set(tag, drive.from());
    const Vector step = hn::Set(tag, drive.step());
    const Vector last = hn::Set(tag, drive.last());
    std::uint32_t i = 0;
    if (drive.step() == 0.0F) {
        const Shape shaped(from);
        for (; i + lanes <= frames; i += lanes) {
            shape(shaped, left + i);
            shape(shaped, right + i);
        }
    }
    for (; i + lanes <= frames; i += lanes) {
        const Vector position = hn::Div(hn::Iota(tag, static_cast<float>(i)), last);
        const Shape shaped(hn::Add(from, hn::Mul(step, position)));
        shape(shaped, left + i);
        shape(shaped, right + i);
    }
    for (; i < frames; ++i) {
        const Shape shaped(hn::Set(tag, drive.at(i)));
        left[i] = hn::GetLane(shaped(hn::Set(tag, left[i])));
        right[i] = hn::GetLane(shaped(hn::Set(tag, right[i])));
    }
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(saturateInLanes);

void saturate(float *left, float *right, std::uint32_t frames, const LinearRamp &drive) noexcept {
    HWY_DYNAMIC_DISPATCH(saturateInLanes)(left, right, frames, drive);
}

void saturatePlainly(float *left, float *right, std::uint32_t frames,
                     const LinearRamp &drive) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float d = drive.at(i);
        const float k = 1.0F + 3.0F * d;
        const float dry = 1.0F - 0.5F * d;
        left[i] = left[i] * dry + d * std::tanh(k * left[i]) / k;
        right[i] = right[i] * dry + d * std::tanh(k * right[i]) / k;
    }
}

} // namespace quorbel
#endif
