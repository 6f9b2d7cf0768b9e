#include "equalizer/MovingCascade.h"

#include "platform/dsp/VectorTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "equalizer/MovingCascade.cpp"
// Highway requires this order.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "equalizer/SectionLanes-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

/// Coefficients of a pass at one frame per lane; unused lanes stay at zero.
template <typename L> class MovingCoefficients : public LaneRoutes<L, 1> {
    using Vector = typename L::Vector;

  public:
    MovingCoefficients(const MovingCascade &cascade, const MovingSection *sections,
                       std::size_t count) noexcept
        : LaneRoutes<L, 1>(count) {
        constexpr float SectionCoefficients::*values[valueCount] = {
            &SectionCoefficients::cutoff, &SectionCoefficients::feedback,
            &SectionCoefficients::direct, &SectionCoefficients::first,
            &SectionCoefficients::second};
        HWY_ALIGN float from[valueCount][longestVector] = {};
        HWY_ALIGN float to[valueCount][longestVector] = {};
        HWY_ALIGN float scales[longestVector] = {};
        HWY_ALIGN float moves[longestVector] = {};
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            const MovingSection &section = sections[i];
            for (std::size_t value = 0; value < valueCount; ++value) {
                from[value][lane] = section.from->*values[value];
                to[value][lane] =
                    (section.to != nullptr ? section.to : section.from)->*values[value];
            }
            scales[lane] = section.from->scale;
            moves[lane] = section.to != nullptr ? 1.0F : 0.0F;
        });
        const Vector perFrame = hn::Set(L::tag, 1.0F / static_cast<float>(cascade.stepFrames));
        for (std::size_t value = 0; value < valueCount; ++value) {
            from_[value] = hn::Load(L::tag, from[value]);
            perFrame_[value] =
                hn::Mul(hn::Sub(hn::Load(L::tag, to[value]), from_[value]), perFrame);
        }
        restingScale_ = hn::Load(L::tag, scales);
        moves_ = hn::Ne(hn::Load(L::tag, moves), hn::Zero(L::tag));
        // Each lane lags by its start step.
        position_ =
            hn::Sub(hn::Set(L::tag, static_cast<float>(cascade.stepPosition)), this->startStep);
    }

    HWY_INLINE void moveTo(Vector step) noexcept {
        const Vector position = hn::Add(position_, step);
        for (std::size_t value = 0; value < valueCount; ++value)
            now_[value] = hn::Add(from_[value], hn::Mul(perFrame_[value], position));
        const Vector closed = hn::Div(
            now_[cutoff], hn::Add(hn::Set(L::tag, 1.0F), hn::Mul(now_[cutoff], now_[feedback])));
        scale_ = hn::IfThenElse(moves_, closed, restingScale_);
    }

    /// Computes the sums of processSample in its order.
    HWY_INLINE Vector process(Vector x, Vector &first, Vector &second) const noexcept {
        const Vector drive =
            hn::Mul(scale_, hn::Sub(hn::Sub(x, hn::Mul(now_[feedback], first)), second));
        const Vector bandpass = hn::Add(first, drive);
        const Vector rise = hn::Mul(now_[cutoff], bandpass);
        const Vector lowpass = hn::Add(second, rise);
        first = hn::Add(bandpass, drive);
        second = hn::Add(lowpass, rise);
        return hn::Add(hn::Add(hn::Mul(now_[direct], x), hn::Mul(now_[ofBandpass], bandpass)),
                       hn::Mul(now_[ofLowpass], lowpass));
    }

  private:
    enum Value : std::size_t { cutoff, feedback, direct, ofBandpass, ofLowpass, valueCount };

    Vector from_[valueCount];
    Vector perFrame_[valueCount];
    Vector restingScale_;
    typename L::Mask moves_;
    Vector position_; // of each lane in step 0
    Vector now_[valueCount];
    Vector scale_;
};

} // namespace

// Not noexcept, which Highway's dispatch table does not accept; nothing in it throws.
void processMovingInLanes(const MovingCascade &cascade, float *left, float *right,
                          std::uint32_t frames) {
    forEachPass(cascade.count, [&](std::size_t first, std::size_t count, auto layout) HWY_ATTR {
        const MovingSection *const sections = cascade.sections + first;
        const auto stateOf = [&](bool isLeft, std::size_t i) -> SectionState & {
            return isLeft ? *sections[i].left : *sections[i].right;
        };
        const MovingCoefficients<decltype(layout)> coefficients(cascade, sections, count);
        StereoLanes<decltype(layout)> lanes(count, stateOf);
        runMasked(coefficients, lanes, left, right, frames, coefficients.delayOf(count));
        lanes.save(count, stateOf);
    });
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(processMovingInLanes);

void processMoving(const MovingCascade &cascade, float *left, float *right,
                   std::uint32_t frames) noexcept {
    HWY_DYNAMIC_DISPATCH(processMovingInLanes)(cascade, left, right, frames);
}

namespace {

SectionCoefficients coefficientsAt(const MovingSection &section, const MovingCascade &cascade,
                                   std::uint32_t frame) noexcept {
    if (section.to == nullptr)
        return *section.from;
    const SectionCoefficients &from = *section.from;
    const SectionCoefficients &to = *section.to;
    const float perFrame = 1.0F / static_cast<float>(cascade.stepFrames);
    const auto position = static_cast<float>(cascade.stepPosition + frame);
    SectionCoefficients result;
    result.cutoff = from.cutoff + (to.cutoff - from.cutoff) * perFrame * position;
    result.feedback = from.feedback + (to.feedback - from.feedback) * perFrame * position;
    result.direct = from.direct + (to.direct - from.direct) * perFrame * position;
    result.first = from.first + (to.first - from.first) * perFrame * position;
    result.second = from.second + (to.second - from.second) * perFrame * position;
    result.close();
    return result;
}

} // namespace

void processMovingPlainly(const MovingCascade &cascade, float *left, float *right,
                          std::uint32_t frames) noexcept {
    for (std::size_t i = 0; i < cascade.count; ++i) {
        const MovingSection &section = cascade.sections[i];
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            const SectionCoefficients now = coefficientsAt(section, cascade, frame);
            left[frame] = processSample(now, *section.left, left[frame]);
            right[frame] = processSample(now, *section.right, right[frame]);
        }
    }
}

} // namespace quorbel
#endif
