#include "effects/cores/LimiterBlock.h"

#include "platform/dsp/VectorTargets.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/LimiterBlock.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, blockPadding>;
using Vector = hn::Vec<Tag>;
constexpr Tag tag;

/// Returns the target gains of neighbouring frames: each lane scans its frame's whole window.
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

/// Writes every frame's output; `gains(i)` returns the gains of the frames from i on.
template <typename Gains> HWY_INLINE void apply(const LimiterBlock &s, const Gains &gains) {
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    const Vector threshold = hn::Set(tag, s.threshold);
    std::uint32_t i = 0;
    for (; i + lanes <= s.count; i += lanes) {
        hn::StoreU(limited(s.delayedL + i, gains(i), threshold), tag, s.outL + i);
        hn::StoreU(limited(s.delayedR + i, gains(i), threshold), tag, s.outR + i);
    }
    if (i == s.count)
        return;
    const std::size_t rest = (s.count - i) * sizeof(float);
    HWY_ALIGN float last[blockPadding];
    hn::Store(limited(s.delayedL + i, gains(i), threshold), tag, last);
    std::memcpy(s.outL + i, last, rest);
    hn::Store(limited(s.delayedR + i, gains(i), threshold), tag, last);
    std::memcpy(s.outR + i, last, rest);
}

HWY_INLINE bool anyBeyond(const float *peaks, std::uint32_t count, float threshold) {
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    Vector largest = hn::Zero(tag);
    std::uint32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        largest = hn::Max(largest, hn::LoadU(tag, peaks + i));
    for (; i < count; ++i)
        largest = hn::Max(largest, hn::Set(tag, peaks[i]));
    return !hn::AllTrue(tag, hn::Le(largest, hn::Set(tag, threshold)));
}

/// Processes a block in which every target gain is 1.
HWY_INLINE float releaseBlock(const LimiterBlock &s, float &gain) {
    const float before = gain;
    // A step that rounds to 0 keeps the gain constant from here on.
    if (const float after = before + (1.0F - before) * s.releaseCoeff; after == before) {
        apply(s, [before](std::uint32_t) HWY_ATTR { return hn::Set(tag, before); });
        return before;
    }
    float g = before;
    for (std::uint32_t i = 0; i < s.count; ++i) {
        g += (1.0F - g) * s.releaseCoeff;
        s.gains[i] = g;
    }
    gain = g;
    apply(s, [&](std::uint32_t i) HWY_ATTR { return hn::LoadU(tag, s.gains + i); });
    // The gain only rises.
    return s.gains[0];
}

} // namespace

// Not noexcept, which Highway's dispatch table does not accept; nothing in it throws.
float limitBlockInLanes(const LimiterBlock &s, float &gain) {
    if (!anyBeyond(s.peaks, s.lookahead + s.count, s.threshold))
        return releaseBlock(s, gain);

    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    const Vector threshold = hn::Set(tag, s.threshold);
    const auto aim = [&](std::uint32_t begin) HWY_ATTR {
        hn::StoreU(targets(s.peaks + begin, s.lookahead + 1, threshold), tag, s.gains + begin);
    };
    const float attackCoeff = s.attackCoeff;
    const float releaseCoeff = s.releaseCoeff;
    float *const gains = s.gains;
    float g = gain;
    float smallest = 1.0F;
    aim(0);
    for (std::uint32_t begin = 0; begin < s.count; begin += lanes) {
        // Scanning one vector ahead lets the scan overlap the recursion over frames.
        if (begin + lanes < s.count)
            aim(begin + lanes);
        const std::uint32_t end = std::min(begin + lanes, s.count);
        for (std::uint32_t i = begin; i < end; ++i) {
            // The attack is faster, so the smaller step is the attack for a falling gain and the
            // release for a rising one.
            const float distance = gains[i] - g;
            g += std::min(distance * attackCoeff, distance * releaseCoeff);
            gains[i] = g;
            smallest = std::min(smallest, g);
        }
    }
    gain = g;
    apply(s, [&](std::uint32_t i) HWY_ATTR { return hn::LoadU(tag, s.gains + i); });
    return smallest;
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(limitBlockInLanes);

float limitBlock(const LimiterBlock &block, float &gain) noexcept {
    return HWY_DYNAMIC_DISPATCH(limitBlockInLanes)(block, gain);
}

float limitBlockPlainly(const LimiterBlock &s, float &gain) noexcept {
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
