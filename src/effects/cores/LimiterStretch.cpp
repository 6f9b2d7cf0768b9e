#include "effects/cores/LimiterStretch.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/LimiterStretch.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, stretchPadding>;
using Vector = hn::Vec<Tag>;
constexpr Tag tag;

/// The gains that neighbouring frames aim at: each scans its whole window, the frames side by side.
HWY_INLINE Vector targets(const float *windows, std::uint32_t windowLength, Vector threshold) {
    Vector even = hn::Zero(tag);
    Vector odd = hn::Zero(tag);
    std::uint32_t i = 0;
    for (; i + 2 <= windowLength; i += 2) {
        even = hn::Max(even, hn::LoadU(tag, windows + i));
        odd = hn::Max(odd, hn::LoadU(tag, windows + i + 1));
    }
    if (i < windowLength)
        even = hn::Max(even, hn::LoadU(tag, windows + i));
    const Vector peak = hn::Max(even, odd);
    const Vector one = hn::Set(tag, 1.0F);
    return hn::IfThenElse(hn::Lt(threshold, peak), hn::Div(threshold, peak), one);
}

HWY_INLINE Vector limited(const float *delayed, Vector gain, Vector threshold) {
    const Vector scaled = hn::Mul(hn::LoadU(tag, delayed), gain);
    return hn::Min(hn::Max(scaled, hn::Neg(threshold)), threshold);
}

} // namespace

// Without noexcept, which Highway's table of targets does not take; nothing in it throws.
float limitStretchInLanes(const LimiterStretch &s, float &gain) {
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    const Vector threshold = hn::Set(tag, s.threshold);
    for (std::uint32_t i = 0; i < s.count; i += lanes)
        hn::StoreU(targets(s.peaks + i, s.lookahead + 1, threshold), tag, s.gains + i);

    // The one thing that has to go frame by frame.
    float g = gain;
    float smallest = 1.0F;
    for (std::uint32_t i = 0; i < s.count; ++i) {
        const float target = s.gains[i];
        const float coefficient = target < g ? s.attackCoeff : s.releaseCoeff;
        g += (target - g) * coefficient;
        s.gains[i] = g;
        smallest = std::min(smallest, g);
    }
    gain = g;

    std::uint32_t i = 0;
    for (; i + lanes <= s.count; i += lanes) {
        const Vector gains = hn::LoadU(tag, s.gains + i);
        hn::StoreU(limited(s.delayedL + i, gains, threshold), tag, s.outL + i);
        hn::StoreU(limited(s.delayedR + i, gains, threshold), tag, s.outR + i);
    }
    for (; i < s.count; ++i) {
        s.outL[i] = std::clamp(s.delayedL[i] * s.gains[i], -s.threshold, s.threshold);
        s.outR[i] = std::clamp(s.delayedR[i] * s.gains[i], -s.threshold, s.threshold);
    }
    return smallest;
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(limitStretchInLanes);

float limitStretch(const LimiterStretch &stretch, float &gain) noexcept {
    return HWY_DYNAMIC_DISPATCH(limitStretchInLanes)(stretch, gain);
}

float limitStretchPlainly(const LimiterStretch &s, float &gain) noexcept {
    float smallest = 1.0F;
    for (std::uint32_t i = 0; i < s.count; ++i) {
        const float *window = s.peaks + i;
        const float peak = *std::max_element(window, window + s.lookahead + 1);
        const float target = s.threshold < peak ? s.threshold / peak : 1.0F;
        const float coefficient = target < gain ? s.attackCoeff : s.releaseCoeff;
        gain += (target - gain) * coefficient;
        s.outL[i] = std::clamp(s.delayedL[i] * gain, -s.threshold, s.threshold);
        s.outR[i] = std::clamp(s.delayedR[i] * gain, -s.threshold, s.threshold);
        smallest = std::min(smallest, gain);
    }
    return smallest;
}

} // namespace quorbel
#endif
