#include "platform/dsp/SectionCascade.h"

#include <algorithm>

// Types of unknown size cannot be members of the structures below; such machines use their 128-bit
// vectors instead.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/dsp/SectionCascade.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, 16>;
using Vector = hn::Vec<Tag>;

constexpr Tag tag;

/// A lane reads in one step what its neighbour wrote two steps ago, not one: so no step has to wait
/// for the whole of the step before it, only for its memory.
constexpr std::uint32_t stepsPerLane = 2;

/// Moves every lane's content up by one, the highest lane's round to the lowest.
auto upByOneLane() noexcept {
    const std::size_t lanes = hn::Lanes(tag);
    HWY_ALIGN std::int32_t indices[16] = {};
    for (std::size_t i = 0; i < lanes; ++i)
        indices[i] = static_cast<std::int32_t>((i + lanes - 1) % lanes);
    return hn::SetTableIndices(tag, indices);
}

/// The sections of one pass, in the highest lanes; the lanes below stay at zero.
class LaneCoefficients {
  public:
    LaneCoefficients(const SectionCoefficients *sections, std::size_t count) noexcept {
        const std::size_t lanes = hn::Lanes(tag);
        const std::size_t firstLane = lanes - count;
        HWY_ALIGN float table[9][16] = {};
        for (std::size_t i = 0; i < count; ++i) {
            const SectionCoefficients &section = sections[i];
            const std::size_t lane = firstLane + i;
            const float throughBandpass = section.first + section.second * section.cutoff;
            table[0][lane] = 2.0F * section.cutoff;
            table[1][lane] = section.feedback;
            table[2][lane] = section.scale;
            table[3][lane] = section.direct;
            table[4][lane] = throughBandpass;
            table[5][lane] = section.second;
            table[6][lane] = throughBandpass * section.scale;
            table[7][lane] = static_cast<float>(i * stepsPerLane);
            table[8][lane] = i == 0 ? 1.0F : 0.0F;
        }
        twiceCutoff = hn::Load(tag, table[0]);
        feedback = hn::Load(tag, table[1]);
        const Vector scale = hn::Load(tag, table[2]);
        twiceScale = hn::Add(scale, scale);
        secondOfDrive = hn::Mul(twiceCutoff, scale);
        direct = hn::Load(tag, table[3]);
        outputOfFirst = hn::Load(tag, table[4]);
        outputOfSecond = hn::Load(tag, table[5]);
        outputOfDrive = hn::Load(tag, table[6]);
        startStep = hn::Load(tag, table[7]);
        inputLane = hn::Ne(hn::Load(tag, table[8]), hn::Zero(tag));
    }

    Vector twiceCutoff;
    Vector feedback;
    Vector twiceScale;
    Vector secondOfDrive; // what the drive adds to the second memory
    Vector direct;
    Vector outputOfFirst;
    Vector outputOfSecond;
    Vector outputOfDrive;
    Vector startStep;        // when each lane's first frame arrives
    hn::Mask<Tag> inputLane; // which lane reads the input
    decltype(upByOneLane()) upByOne = upByOneLane();
};

class LaneStates {
  public:
    LaneStates(const SectionState *states, std::size_t count) noexcept {
        HWY_ALIGN float firstTable[16] = {};
        HWY_ALIGN float secondTable[16] = {};
        const std::size_t firstLane = hn::Lanes(tag) - count;
        for (std::size_t i = 0; i < count; ++i) {
            firstTable[firstLane + i] = states[i].first;
            secondTable[firstLane + i] = states[i].second;
        }
        first_ = hn::Load(tag, firstTable);
        second_ = hn::Load(tag, secondTable);
        next_ = after_ = hn::Zero(tag);
    }

    void save(SectionState *states, std::size_t count) const noexcept {
        HWY_ALIGN float firstTable[16];
        HWY_ALIGN float secondTable[16];
        hn::Store(first_, tag, firstTable);
        hn::Store(second_, tag, secondTable);
        const std::size_t firstLane = hn::Lanes(tag) - count;
        for (std::size_t i = 0; i < count; ++i)
            states[i] = {firstTable[firstLane + i], secondTable[firstLane + i]};
    }

    /// One step: `input` goes into the first section, what the last section puts out comes back.
    /// Only lanes in `active` remember anything of it.
    HWY_INLINE float step(const LaneCoefficients &c, float input, hn::Mask<Tag> active) noexcept {
        const Vector first = first_;
        const Vector second = second_;
        const float output = step(c, input);
        first_ = hn::IfThenElse(active, first_, first);
        second_ = hn::IfThenElse(active, second_, second);
        return output;
    }

    HWY_INLINE float step(const LaneCoefficients &c, float input) noexcept {
        const Vector x = hn::IfThenElse(c.inputLane, hn::Set(tag, input), next_);
        // The sums of processSample, in the order that leaves the shortest way from one step's
        // memory to the next one's and from input to output.
        const Vector drive = hn::Sub(hn::NegMulAdd(c.feedback, first_, x), second_);
        const Vector remembered =
            hn::MulAdd(c.outputOfSecond, second_, hn::Mul(c.outputOfFirst, first_));
        const Vector output =
            hn::MulAdd(c.outputOfDrive, drive, hn::MulAdd(c.direct, x, remembered));
        const Vector integrated = hn::MulAdd(c.twiceCutoff, first_, second_);
        first_ = hn::MulAdd(c.twiceScale, drive, first_);
        second_ = hn::MulAdd(c.secondOfDrive, drive, integrated);
        // The highest lane, that of the last section, comes round to the lowest.
        const Vector moved = hn::TableLookupLanes(output, c.upByOne);
        next_ = after_;
        after_ = moved;
        return hn::GetLane(moved);
    }

  private:
    Vector first_;
    Vector second_;
    Vector next_;  // what the lanes read in the next step
    Vector after_; // and in the one after that
};

/// Steps in which some lanes have not started yet or have already stopped.
void runEdge(const LaneCoefficients &coefficients, LaneStates &leftLanes, LaneStates &rightLanes,
             float *left, float *right, std::uint32_t frames, std::uint32_t delay,
             std::uint32_t fromStep, std::uint32_t toStep) noexcept {
    const Vector end = hn::Add(coefficients.startStep, hn::Set(tag, static_cast<float>(frames)));
    for (std::uint32_t step = fromStep; step < toStep; ++step) {
        const Vector now = hn::Set(tag, static_cast<float>(step));
        const auto active = hn::And(hn::Ge(now, coefficients.startStep), hn::Lt(now, end));
        const bool hasInput = step < frames;
        const float leftOut = leftLanes.step(coefficients, hasInput ? left[step] : 0.0F, active);
        const float rightOut = rightLanes.step(coefficients, hasInput ? right[step] : 0.0F, active);
        if (step >= delay) {
            left[step - delay] = leftOut;
            right[step - delay] = rightOut;
        }
    }
}

/// Steps in which all lanes work. Everything is copied, so that the loop runs in registers.
void runMiddle(LaneCoefficients coefficients, LaneStates &leftStates, LaneStates &rightStates,
               float *left, float *right, std::uint32_t delay, std::uint32_t fromStep,
               std::uint32_t toStep) noexcept {
    LaneStates leftLanes = leftStates;
    LaneStates rightLanes = rightStates;
    for (std::size_t step = fromStep; step < toStep; ++step) {
        left[step - delay] = leftLanes.step(coefficients, left[step]);
        right[step - delay] = rightLanes.step(coefficients, right[step]);
    }
    leftStates = leftLanes;
    rightStates = rightLanes;
}

/// As many sections as there are lanes, at most.
void processLanes(const SectionCascade &cascade, float *left, float *right,
                  std::uint32_t frames) noexcept {
    const LaneCoefficients coefficients(cascade.sections, cascade.count);
    LaneStates leftLanes(cascade.left, cascade.count);
    LaneStates rightLanes(cascade.right, cascade.count);
    const auto delay = static_cast<std::uint32_t>(cascade.count - 1) * stepsPerLane;
    const std::uint32_t middleEnd = std::max(frames, delay);
    runEdge(coefficients, leftLanes, rightLanes, left, right, frames, delay, 0, delay);
    runMiddle(coefficients, leftLanes, rightLanes, left, right, delay, delay, middleEnd);
    runEdge(coefficients, leftLanes, rightLanes, left, right, frames, delay, middleEnd,
            frames + delay);
    leftLanes.save(cascade.left, cascade.count);
    rightLanes.save(cascade.right, cascade.count);
}

} // namespace

// Without noexcept, which Highway's table of targets does not take; nothing in it throws.
void processCascadeInLanes(const SectionCascade &cascade, float *left, float *right,
                           std::uint32_t frames) {
    // Even passes: ten sections on eight lanes are two passes of five.
    const std::size_t lanes = hn::Lanes(tag);
    const std::size_t passes = (cascade.count + lanes - 1) / lanes;
    for (std::size_t pass = 0, done = 0; pass < passes; ++pass) {
        const std::size_t count = (cascade.count - done + passes - pass - 1) / (passes - pass);
        processLanes({cascade.sections + done, cascade.left + done, cascade.right + done, count},
                     left, right, frames);
        done += count;
    }
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(processCascadeInLanes);

void processCascade(const SectionCascade &cascade, float *left, float *right,
                    std::uint32_t frames) noexcept {
    // Steps are counted in floats within a call.
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
