#include "equalizer/SectionCascade.h"

#include "platform/dsp/VectorTargets.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "equalizer/SectionCascade.cpp"
// Highway requires this order.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "equalizer/SectionLanes-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

/// Coefficients of a pass; unused lanes stay at zero.
template <typename L, std::uint32_t stepsPerLane>
struct LaneCoefficients : LaneRoutes<L, stepsPerLane> {
    using Vector = typename L::Vector;

    LaneCoefficients(const SectionCoefficients *sections, std::size_t count) noexcept
        : LaneRoutes<L, stepsPerLane>(count) {
        HWY_ALIGN float table[7][longestVector] = {};
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            const SectionCoefficients &section = sections[i];
            const float throughBandpass = section.first + section.second * section.cutoff;
            const float drive = 2.0F * section.scale;
            table[0][lane] = drive;
            table[1][lane] = drive * section.cutoff;
            table[2][lane] = drive * section.feedback;
            table[3][lane] = 2.0F * section.cutoff * (1.0F - section.scale * section.feedback);
            table[4][lane] = section.direct + throughBandpass * section.scale;
            table[5][lane] = throughBandpass * (1.0F - section.scale * section.feedback);
            table[6][lane] = section.second - throughBandpass * section.scale;
        });
        firstOfDifference = hn::Load(L::tag, table[0]);
        secondOfDifference = hn::Load(L::tag, table[1]);
        firstOfFirst = hn::Load(L::tag, table[2]);
        secondOfFirst = hn::Load(L::tag, table[3]);
        outputOfInput = hn::Load(L::tag, table[4]);
        outputOfFirst = hn::Load(L::tag, table[5]);
        outputOfSecond = hn::Load(L::tag, table[6]);
    }

    /// Latency-bound: computes the sums of processSample in the order with the shortest path from
    /// one step's states to the next. Both states still grow by increments. The multiplications
    /// fill their ports, so the order of the lines counts: in others GCC 12's loops take up to a
    /// sixth longer on Zen 4, with AVX-512 or without.
    HWY_INLINE Vector process(Vector x, Vector &first, Vector &second) const noexcept {
        const Vector difference = hn::Sub(x, second);
        const Vector output = hn::MulAdd(
            outputOfInput, x, hn::MulAdd(outputOfFirst, first, hn::Mul(outputOfSecond, second)));
        const Vector nextFirst = hn::NegMulAdd(firstOfFirst, first, first);
        const Vector nextSecond = hn::MulAdd(secondOfFirst, first, second);
        first = hn::MulAdd(firstOfDifference, difference, nextFirst);
        second = hn::MulAdd(secondOfDifference, difference, nextSecond);
        return output;
    }

    void moveTo(Vector) const noexcept {} ///< resting sections

    Vector firstOfDifference; // increment of the first state per (input - second state)
    Vector secondOfDifference;
    Vector firstOfFirst; // its decrement per first state
    Vector secondOfFirst;
    Vector outputOfInput;
    Vector outputOfFirst;
    Vector outputOfSecond;
};

// A longer call runs in three parts. Copies keep their loops in registers.

/// Runs the first steps, in which one lane after the other starts, without output.
template <typename L, std::uint32_t stepsPerLane>
void runStart(LaneCoefficients<L, stepsPerLane> c, StereoLanes<L> &states, const float *left,
              const float *right, std::uint32_t delay) noexcept {
    StereoLanes<L> lanes = states;
    typename L::Vector now = hn::Zero(L::tag);
    for (std::size_t step = 0; step < delay; ++step) {
        lanes.step(c, {left[step], right[step]}, hn::Ge(now, c.startStep));
        now = hn::Add(now, hn::Set(L::tag, 1.0F));
    }
    states = lanes;
}

/// Runs the steps in which all lanes work.
template <typename L, std::uint32_t stepsPerLane>
void runMiddle(LaneCoefficients<L, stepsPerLane> c, StereoLanes<L> &states, float *left,
               float *right, std::size_t frames, std::size_t delay) noexcept {
    StereoLanes<L> lanes = states;
    for (std::size_t step = delay; step < frames; ++step) {
        const Frame output = lanes.step(c, {left[step], right[step]});
        left[step - delay] = output.left;
        right[step - delay] = output.right;
    }
    states = lanes;
}

/// Runs the steps after the last input, in which one lane after the other stops. `left` and `right`
/// receive the last `delay` frames.
template <typename L, std::uint32_t stepsPerLane>
void runEnd(LaneCoefficients<L, stepsPerLane> c, StereoLanes<L> &states, float *left, float *right,
            std::uint32_t delay) noexcept {
    StereoLanes<L> lanes = states;
    typename L::Vector now = hn::Zero(L::tag);
    for (std::size_t step = 0; step < delay; ++step) {
        const Frame output = lanes.step(c, {0.0F, 0.0F}, hn::Lt(now, c.startStep));
        left[step] = output.left;
        right[step] = output.right;
        now = hn::Add(now, hn::Set(L::tag, 1.0F));
    }
    states = lanes;
}

/// Processes at most as many sections as a part has lanes.
template <typename L, std::uint32_t stepsPerLane>
void processLanes(const SectionCascade &cascade, float *left, float *right,
                  std::uint32_t frames) noexcept {
    const LaneCoefficients<L, stepsPerLane> coefficients(cascade.sections, cascade.count);
    const auto stateOf = [&](bool isLeft, std::size_t i) -> SectionState & {
        return (isLeft ? cascade.left : cascade.right)[i];
    };
    StereoLanes<L> lanes(cascade.count, stateOf);
    const std::uint32_t delay = coefficients.delayOf(cascade.count);
    if (frames < delay) {
        runMasked(coefficients, lanes, left, right, frames, delay);
    } else {
        runStart(coefficients, lanes, left, right, delay);
        runMiddle(coefficients, lanes, left, right, frames, delay);
        runEnd(coefficients, lanes, left + frames - delay, right + frames - delay, delay);
    }
    lanes.save(cascade.count, stateOf);
}

} // namespace

/// In shorter calls the bottleneck is the delay through sixteen lanes, not the time of a step.
/// Fewer lanes have less delay, and their steps are latency-bound.
constexpr std::uint32_t shortestLongCall = 256;

// Not noexcept, which Highway's dispatch table does not accept; nothing in it throws.
void processCascadeInLanes(const SectionCascade &cascade, float *left, float *right,
                           std::uint32_t frames) {
    forEachPass(cascade.count, [&](std::size_t first, std::size_t count, auto layout) HWY_ATTR {
        const SectionCascade part{cascade.sections + first, cascade.left + first,
                                  cascade.right + first, count};
        if constexpr (hn::MaxLanes(decltype(layout)::tag) == longestVector)
            if (frames < shortestLongCall) {
                processLanes<decltype(layout), 1>(part, left, right, frames);
                return;
            }
        processLanes<decltype(layout), 2>(part, left, right, frames);
    });
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(processCascadeInLanes);

void processCascade(const SectionCascade &cascade, float *left, float *right,
                    std::uint32_t frames) noexcept {
    // A call counts its steps in floats.
    constexpr std::uint32_t longestCall = 65536;
    while (frames > 0) {
        const std::uint32_t chunk = std::min(frames, longestCall);
        HWY_DYNAMIC_DISPATCH(processCascadeInLanes)(cascade, left, right, chunk);
        left += chunk;
        right += chunk;
        frames -= chunk;
    }
}

void processCascadePlainly(const SectionCascade &cascade, float *left, float *right,
                           std::uint32_t frames) noexcept {
    for (std::size_t i = 0; i < cascade.count; ++i)
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            left[frame] = processSample(cascade.sections[i], cascade.left[i], left[frame]);
            right[frame] = processSample(cascade.sections[i], cascade.right[i], right[frame]);
        }
}

} // namespace quorbel
#endif
