#include "platform/dsp/SectionCascade.h"

#include "platform/dsp/VectorTargets.h"

#include <algorithm>

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

/// A lane reads the output that its neighbour wrote two steps ago, not one: so a step waits only
/// for the states of the step before it, not for its output.
constexpr std::uint32_t stepsPerLane = 2;

/// Left and right in two vectors, or in the halves of one if both fit. A part is a vector or half
/// of one; the sections occupy its highest lanes.
enum class Channels { apart, together };

template <Channels channels> std::size_t partLanes() noexcept {
    return hn::Lanes(tag) / (channels == Channels::together ? 2 : 1);
}

/// Calls `place(lane, section)` for every section in every part of a vector.
template <Channels channels, typename Place>
HWY_INLINE void forEachLane(std::size_t count, const Place &place) noexcept {
    const std::size_t lanes = partLanes<channels>();
    for (std::size_t part = 0; part < hn::Lanes(tag); part += lanes)
        for (std::size_t i = 0; i < count; ++i)
            place(part + lanes - count + i, i);
}

HWY_INLINE float firstOfUpperHalf(Vector v) noexcept {
#if HWY_TARGET == HWY_SCALAR // one lane, and so never two parts
    return hn::GetLane(v);
#else
    const hn::Half<Tag> half;
    return hn::GetLane(hn::UpperHalf(half, v));
#endif
}

/// Moves every lane's value up by one, and that of a part's highest lane to its lowest.
template <Channels channels> auto upByOneLane() noexcept {
    const std::size_t lanes = partLanes<channels>();
    HWY_ALIGN std::int32_t indices[16] = {};
    for (std::size_t i = 0; i < hn::Lanes(tag); ++i)
        indices[i] = static_cast<std::int32_t>(i - i % lanes + (i + lanes - 1) % lanes);
    return hn::SetTableIndices(tag, indices);
}

/// The sections of one pass; lanes without a section stay at zero.
template <Channels channels> class LaneCoefficients {
  public:
    LaneCoefficients(const SectionCoefficients *sections, std::size_t count) noexcept {
        HWY_ALIGN float table[9][16] = {};
        forEachLane<channels>(count, [&](std::size_t lane, std::size_t i) {
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
            table[7][lane] = static_cast<float>(i * stepsPerLane);
            table[8][lane] = i == 0 ? (lane < partLanes<channels>() ? 1.0F : 2.0F) : 0.0F;
        });
        firstOfDifference = hn::Load(tag, table[0]);
        secondOfDifference = hn::Load(tag, table[1]);
        firstOfFirst = hn::Load(tag, table[2]);
        secondOfFirst = hn::Load(tag, table[3]);
        outputOfInput = hn::Load(tag, table[4]);
        outputOfFirst = hn::Load(tag, table[5]);
        outputOfSecond = hn::Load(tag, table[6]);
        startStep = hn::Load(tag, table[7]);
        const Vector inputs = hn::Load(tag, table[8]);
        inputLane = hn::Eq(inputs, hn::Set(tag, 1.0F));
        rightInputLane = hn::Eq(inputs, hn::Set(tag, 2.0F));
    }

    Vector firstOfDifference; // share of (input - second state) added to the first state
    Vector secondOfDifference;
    Vector firstOfFirst; // share of the first state subtracted from itself
    Vector secondOfFirst;
    Vector outputOfInput;
    Vector outputOfFirst;
    Vector outputOfSecond;
    Vector startStep;             // step of each lane's first frame
    hn::Mask<Tag> inputLane;      // which lane reads the input
    hn::Mask<Tag> rightInputLane; // of the second part
    decltype(upByOneLane<channels>()) upByOne = upByOneLane<channels>();
};

/// The sections' states and the samples between lanes.
class LaneStates {
  public:
    LaneStates(Vector first, Vector second) noexcept : first_(first), second_(second) {}

    [[nodiscard]] HWY_INLINE Vector first() const noexcept { return first_; }
    [[nodiscard]] HWY_INLINE Vector second() const noexcept { return second_; }
    /// Inputs of the next step, except of the lanes that read the sound.
    [[nodiscard]] HWY_INLINE Vector next() const noexcept { return next_; }

    /// Runs one step. Returns the sections' outputs, moved up by one lane. Only lanes in `active`
    /// keep their new states.
    template <typename Coefficients>
    HWY_INLINE Vector step(const Coefficients &c, Vector x, hn::Mask<Tag> active) noexcept {
        const Vector first = first_;
        const Vector second = second_;
        const Vector output = step(c, x);
        first_ = hn::IfThenElse(active, first_, first);
        second_ = hn::IfThenElse(active, second_, second);
        return output;
    }

    template <typename Coefficients>
    HWY_INLINE Vector step(const Coefficients &c, Vector x) noexcept {
        // The sums of processSample, in the order with the shortest dependency chain from one
        // step's states to the next. Both states still grow by increments.
        const Vector output =
            hn::MulAdd(c.outputOfInput, x,
                       hn::MulAdd(c.outputOfFirst, first_, hn::Mul(c.outputOfSecond, second_)));
        const Vector difference = hn::Sub(x, second_);
        const Vector first = hn::NegMulAdd(c.firstOfFirst, first_, first_);
        const Vector second = hn::MulAdd(c.secondOfFirst, first_, second_);
        first_ = hn::MulAdd(c.firstOfDifference, difference, first);
        second_ = hn::MulAdd(c.secondOfDifference, difference, second);
        next_ = last_;
        last_ = hn::TableLookupLanes(output, c.upByOne);
        return last_;
    }

  private:
    Vector first_;
    Vector second_;
    Vector next_ = hn::Zero(tag);
    Vector last_ = hn::Zero(tag); // inputs of the step after the next
};

struct Frame {
    float left;
    float right;
};

/// Both channels' lanes. `active...` is one mask or none, see LaneStates.
template <Channels channels> class StereoLanes;

template <> class StereoLanes<Channels::apart> {
  public:
    using Coefficients = LaneCoefficients<Channels::apart>;

    explicit StereoLanes(const SectionCascade &cascade) noexcept
        : left_(load(cascade.left, cascade.count)), right_(load(cascade.right, cascade.count)) {}

    template <typename... Active>
    HWY_INLINE Frame step(const Coefficients &c, Frame input, Active... active) noexcept {
        return {step(c, left_, input.left, active...), step(c, right_, input.right, active...)};
    }

    void save(const SectionCascade &cascade) const noexcept {
        save(left_, cascade.left, cascade.count);
        save(right_, cascade.right, cascade.count);
    }

  private:
    template <typename... Active>
    static HWY_INLINE float step(const Coefficients &c, LaneStates &lanes, float input,
                                 Active... active) noexcept {
        const Vector x = hn::IfThenElse(c.inputLane, hn::Set(tag, input), lanes.next());
        return hn::GetLane(lanes.step(c, x, active...));
    }

    static LaneStates load(const SectionState *states, std::size_t count) noexcept {
        HWY_ALIGN float table[2][16] = {};
        forEachLane<Channels::apart>(count, [&](std::size_t lane, std::size_t i) {
            table[0][lane] = states[i].first;
            table[1][lane] = states[i].second;
        });
        return {hn::Load(tag, table[0]), hn::Load(tag, table[1])};
    }

    static void save(const LaneStates &lanes, SectionState *states, std::size_t count) noexcept {
        HWY_ALIGN float table[2][16];
        hn::Store(lanes.first(), tag, table[0]);
        hn::Store(lanes.second(), tag, table[1]);
        forEachLane<Channels::apart>(count, [&](std::size_t lane, std::size_t i) {
            states[i] = {table[0][lane], table[1][lane]};
        });
    }

    LaneStates left_;
    LaneStates right_;
};

template <> class StereoLanes<Channels::together> {
  public:
    using Coefficients = LaneCoefficients<Channels::together>;

    explicit StereoLanes(const SectionCascade &cascade) noexcept : lanes_(load(cascade)) {}

    template <typename... Active>
    HWY_INLINE Frame step(const Coefficients &c, Frame input, Active... active) noexcept {
        const Vector left = hn::IfThenElse(c.inputLane, hn::Set(tag, input.left), lanes_.next());
        const Vector x = hn::IfThenElse(c.rightInputLane, hn::Set(tag, input.right), left);
        const Vector output = lanes_.step(c, x, active...);
        return {hn::GetLane(output), firstOfUpperHalf(output)};
    }

    void save(const SectionCascade &cascade) const noexcept {
        HWY_ALIGN float table[2][16];
        hn::Store(lanes_.first(), tag, table[0]);
        hn::Store(lanes_.second(), tag, table[1]);
        forEachLane<Channels::together>(cascade.count, [&](std::size_t lane, std::size_t i) {
            SectionState *states = isLeft(lane) ? cascade.left : cascade.right;
            states[i] = {table[0][lane], table[1][lane]};
        });
    }

  private:
    static bool isLeft(std::size_t lane) noexcept { return lane < partLanes<Channels::together>(); }

    static LaneStates load(const SectionCascade &cascade) noexcept {
        HWY_ALIGN float table[2][16] = {};
        forEachLane<Channels::together>(cascade.count, [&](std::size_t lane, std::size_t i) {
            const SectionState *states = isLeft(lane) ? cascade.left : cascade.right;
            table[0][lane] = states[i].first;
            table[1][lane] = states[i].second;
        });
        return {hn::Load(tag, table[0]), hn::Load(tag, table[1])};
    }

    LaneStates lanes_;
};

/// Runs a call no longer than the delay from input to output: the first lanes stop before the last
/// ones start.
template <Channels channels>
void runShort(const LaneCoefficients<channels> &c, StereoLanes<channels> &states, float *left,
              float *right, std::uint32_t frames, std::uint32_t delay) noexcept {
    StereoLanes<channels> lanes = states;
    const Vector end = hn::Add(c.startStep, hn::Set(tag, static_cast<float>(frames)));
    for (std::uint32_t step = 0; step < frames + delay; ++step) {
        const Vector now = hn::Set(tag, static_cast<float>(step));
        const auto active = hn::And(hn::Ge(now, c.startStep), hn::Lt(now, end));
        const Frame input = step < frames ? Frame{left[step], right[step]} : Frame{0.0F, 0.0F};
        const Frame output = lanes.step(c, input, active);
        if (step >= delay) {
            left[step - delay] = output.left;
            right[step - delay] = output.right;
        }
    }
    states = lanes;
}

// A longer call has three parts. Everything is copied, so that the loops run in registers.

/// Runs the first steps: one lane after the other starts, without output.
template <Channels channels>
void runStart(LaneCoefficients<channels> c, StereoLanes<channels> &states, const float *left,
              const float *right, std::uint32_t delay) noexcept {
    StereoLanes<channels> lanes = states;
    Vector now = hn::Zero(tag);
    for (std::size_t step = 0; step < delay; ++step) {
        lanes.step(c, {left[step], right[step]}, hn::Ge(now, c.startStep));
        now = hn::Add(now, hn::Set(tag, 1.0F));
    }
    states = lanes;
}

/// Runs the steps in which all lanes work.
template <Channels channels>
void runMiddle(LaneCoefficients<channels> c, StereoLanes<channels> &states, float *left,
               float *right, std::size_t frames, std::size_t delay) noexcept {
    StereoLanes<channels> lanes = states;
    for (std::size_t step = delay; step < frames; ++step) {
        const Frame output = lanes.step(c, {left[step], right[step]});
        left[step - delay] = output.left;
        right[step - delay] = output.right;
    }
    states = lanes;
}

/// Runs the steps after the last input: one lane after the other stops. `left` and `right` receive
/// the last `delay` frames.
template <Channels channels>
void runEnd(LaneCoefficients<channels> c, StereoLanes<channels> &states, float *left, float *right,
            std::uint32_t delay) noexcept {
    StereoLanes<channels> lanes = states;
    Vector now = hn::Zero(tag);
    for (std::size_t step = 0; step < delay; ++step) {
        const Frame output = lanes.step(c, {0.0F, 0.0F}, hn::Lt(now, c.startStep));
        left[step] = output.left;
        right[step] = output.right;
        now = hn::Add(now, hn::Set(tag, 1.0F));
    }
    states = lanes;
}

/// Runs at most as many sections as a part has lanes.
template <Channels channels>
void processLanes(const SectionCascade &cascade, float *left, float *right,
                  std::uint32_t frames) noexcept {
    const LaneCoefficients<channels> coefficients(cascade.sections, cascade.count);
    StereoLanes<channels> lanes(cascade);
    const auto delay = static_cast<std::uint32_t>(cascade.count - 1) * stepsPerLane;
    if (frames < delay) {
        runShort(coefficients, lanes, left, right, frames, delay);
    } else {
        runStart(coefficients, lanes, left, right, delay);
        runMiddle(coefficients, lanes, left, right, frames, delay);
        runEnd(coefficients, lanes, left + frames - delay, right + frames - delay, delay);
    }
    lanes.save(cascade);
}

} // namespace

// Not noexcept, which Highway's dispatch table does not accept; nothing in it throws.
void processCascadeInLanes(const SectionCascade &cascade, float *left, float *right,
                           std::uint32_t frames) {
    // Even passes: ten sections on eight lanes are two passes of five.
    const std::size_t lanes = hn::Lanes(tag);
    const std::size_t passes = (cascade.count + lanes - 1) / lanes;
    for (std::size_t pass = 0, done = 0; pass < passes; ++pass) {
        const std::size_t count = (cascade.count - done + passes - pass - 1) / (passes - pass);
        const SectionCascade part{cascade.sections + done, cascade.left + done,
                                  cascade.right + done, count};
        if (2 * count <= lanes)
            processLanes<Channels::together>(part, left, right, frames);
        else
            processLanes<Channels::apart>(part, left, right, frames);
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
