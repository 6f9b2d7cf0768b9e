// Included after Highway's headers by code that is compiled once per vector target; hence the guard
// that changes with the target.
#if defined(QUORBEL_SECTION_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QUORBEL_SECTION_LANES_INL_H
#undef QUORBEL_SECTION_LANES_INL_H
#else
#define QUORBEL_SECTION_LANES_INL_H
#endif

#include "equalizer/StateVariableSection.h"

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Sections in series, one per vector lane. Step n of a call feeds frame n to the first section's
// lane; every other lane lags the previous one by `stepsPerLane` frames. The recursion is
// latency-bound: with 2, a step needs the previous step's states, but not its output. With 1, the
// delay through the lanes is half as long, which counts more in short calls.

inline constexpr std::size_t longestVector = 16;

/// Layout of a pass: left and right in two vectors of up to `mostLanes` lanes, or in the halves of
/// one. A part is such a vector or half; its highest lanes hold the sections.
template <std::size_t mostLanes, bool isTogether_> struct Layout {
    using Tag = hn::CappedTag<float, mostLanes>;
    using Vector = hn::Vec<Tag>;
    using Mask = hn::Mask<Tag>;
    static constexpr Tag tag{};
    static constexpr bool isTogether = isTogether_;

    static std::size_t partLanes() noexcept { return hn::Lanes(tag) / (isTogether ? 2 : 1); }
};
/// Calls `place(lane, section)` for every section in every part of a vector.
template <typename L, typename Place>
HWY_INLINE void forEachLane(std::size_t count, const Place &place) noexcept {
    const std::size_t lanes = L::partLanes();
    for (std::size_t part = 0; part < hn::Lanes(L::tag); part += lanes)
        for (std::size_t i = 0; i < count; ++i)
            place(part + lanes - count + i, i);
}

template <typename L> HWY_INLINE float firstOfUpperHalf(typename L::Vector v) noexcept {
#if HWY_TARGET == HWY_SCALAR // one lane: never two parts
    return hn::GetLane(v);
#else
    const hn::Half<typename L::Tag> half;
    return hn::GetLane(hn::UpperHalf(half, v));
#endif
}

/// Returns the indices that move every lane up by one; a part's highest lane wraps to its lowest.
template <typename L> auto upByOneLane() noexcept {
    const std::size_t lanes = L::partLanes();
    HWY_ALIGN std::int32_t indices[longestVector] = {};
    for (std::size_t i = 0; i < hn::Lanes(L::tag); ++i)
        indices[i] = static_cast<std::int32_t>(i - i % lanes + (i + lanes - 1) % lanes);
    return hn::SetTableIndices(L::tag, indices);
}

/// Path of the sound through the lanes of a pass of `count` sections.
template <typename L, std::uint32_t stepsPerLane_> struct LaneRoutes {
    using Vector = typename L::Vector;
    static constexpr std::uint32_t stepsPerLane = stepsPerLane_;

    explicit LaneRoutes(std::size_t count) noexcept {
        HWY_ALIGN float table[2][longestVector] = {};
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            table[0][lane] = static_cast<float>(i * stepsPerLane);
            table[1][lane] = i == 0 ? (lane < L::partLanes() ? 1.0F : 2.0F) : 0.0F;
        });
        startStep = hn::Load(L::tag, table[0]);
        const Vector inputs = hn::Load(L::tag, table[1]);
        inputLane = hn::Eq(inputs, hn::Set(L::tag, 1.0F));
        rightInputLane = hn::Eq(inputs, hn::Set(L::tag, 2.0F));
    }

    /// Steps from a frame's input to its output.
    static std::uint32_t delayOf(std::size_t count) noexcept {
        return static_cast<std::uint32_t>(count - 1) * stepsPerLane;
    }

    Vector startStep;                // step of each lane's first frame
    typename L::Mask inputLane;      // lane that reads the input
    typename L::Mask rightInputLane; // the same in the second part
    decltype(upByOneLane<L>()) upByOne = upByOneLane<L>();
};

/// States of the sections and the samples in flight between lanes.
template <typename L> class LaneStates {
    using Vector = typename L::Vector;

  public:
    LaneStates(Vector first, Vector second) noexcept : first_(first), second_(second) {}

    [[nodiscard]] HWY_INLINE Vector first() const noexcept { return first_; }
    [[nodiscard]] HWY_INLINE Vector second() const noexcept { return second_; }
    /// Inputs of the next step, except of the lanes that read the call's input.
    [[nodiscard]] HWY_INLINE Vector next() const noexcept { return next_; }

    /// Runs one step and returns the sections' outputs, moved up by one lane. Only lanes in
    /// `active` keep their new states. `Coefficients` are LaneRoutes with
    /// `Vector process(Vector input, Vector &first, Vector &second)`, one frame of every section.
    template <typename Coefficients>
    HWY_INLINE Vector step(const Coefficients &c, Vector x, typename L::Mask active) noexcept {
        const Vector first = first_;
        const Vector second = second_;
        const Vector output = step(c, x);
        first_ = hn::IfThenElse(active, first_, first);
        second_ = hn::IfThenElse(active, second_, second);
        return output;
    }

    template <typename Coefficients>
    HWY_INLINE Vector step(const Coefficients &c, Vector x) noexcept {
        const Vector output = c.process(x, first_, second_);
        next_ = last_;
        last_ = hn::TableLookupLanes(output, c.upByOne);
        if constexpr (Coefficients::stepsPerLane == 1)
            next_ = last_;
        return last_;
    }

  private:
    Vector first_;
    Vector second_;
    Vector next_ = hn::Zero(L::tag);
    Vector last_ = hn::Zero(L::tag); // inputs of the step after the next
};

struct Frame {
    float left;
    float right;
};

/// Lanes of both channels, loaded from and saved to `SectionState &stateOf(isLeft, section)`.
/// `active...` is one mask or none, see LaneStates.
template <typename L, bool isTogether = L::isTogether> class StereoLanes;

template <typename L> class StereoLanes<L, false> {
    using Vector = typename L::Vector;

  public:
    template <typename StateOf>
    StereoLanes(std::size_t count, const StateOf &stateOf) noexcept
        : left_(load(count, stateOf, true)), right_(load(count, stateOf, false)) {}

    template <typename Coefficients, typename... Active>
    HWY_INLINE Frame step(const Coefficients &c, Frame input, Active... active) noexcept {
        return {step(c, left_, input.left, active...), step(c, right_, input.right, active...)};
    }

    template <typename StateOf>
    void save(std::size_t count, const StateOf &stateOf) const noexcept {
        save(left_, count, stateOf, true);
        save(right_, count, stateOf, false);
    }

  private:
    template <typename Coefficients, typename... Active>
    static HWY_INLINE float step(const Coefficients &c, LaneStates<L> &lanes, float input,
                                 Active... active) noexcept {
        const Vector x = hn::IfThenElse(c.inputLane, hn::Set(L::tag, input), lanes.next());
        return hn::GetLane(lanes.step(c, x, active...));
    }

    template <typename StateOf>
    static LaneStates<L> load(std::size_t count, const StateOf &stateOf, bool isLeft) noexcept {
        HWY_ALIGN float table[2][longestVector] = {};
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            table[0][lane] = stateOf(isLeft, i).first;
            table[1][lane] = stateOf(isLeft, i).second;
        });
        return {hn::Load(L::tag, table[0]), hn::Load(L::tag, table[1])};
    }

    template <typename StateOf>
    static void save(const LaneStates<L> &lanes, std::size_t count, const StateOf &stateOf,
                     bool isLeft) noexcept {
        HWY_ALIGN float table[2][longestVector] = {};
        hn::Store(lanes.first(), L::tag, table[0]);
        hn::Store(lanes.second(), L::tag, table[1]);
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            stateOf(isLeft, i) = {table[0][lane], table[1][lane]};
        });
    }

    LaneStates<L> left_;
    LaneStates<L> right_;
};

template <typename L> class StereoLanes<L, true> {
    using Vector = typename L::Vector;

  public:
    template <typename StateOf>
    StereoLanes(std::size_t count, const StateOf &stateOf) noexcept
        : lanes_(load(count, stateOf)) {}

    template <typename Coefficients, typename... Active>
    HWY_INLINE Frame step(const Coefficients &c, Frame input, Active... active) noexcept {
        const Vector left = hn::IfThenElse(c.inputLane, hn::Set(L::tag, input.left), lanes_.next());
        const Vector x = hn::IfThenElse(c.rightInputLane, hn::Set(L::tag, input.right), left);
        const Vector output = lanes_.step(c, x, active...);
        return {hn::GetLane(output), firstOfUpperHalf<L>(output)};
    }

    template <typename StateOf>
    void save(std::size_t count, const StateOf &stateOf) const noexcept {
        HWY_ALIGN float table[2][longestVector] = {};
        hn::Store(lanes_.first(), L::tag, table[0]);
        hn::Store(lanes_.second(), L::tag, table[1]);
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            stateOf(isLeft(lane), i) = {table[0][lane], table[1][lane]};
        });
    }

  private:
    static bool isLeft(std::size_t lane) noexcept { return lane < L::partLanes(); }

    template <typename StateOf>
    static LaneStates<L> load(std::size_t count, const StateOf &stateOf) noexcept {
        HWY_ALIGN float table[2][longestVector] = {};
        forEachLane<L>(count, [&](std::size_t lane, std::size_t i) {
            table[0][lane] = stateOf(isLeft(lane), i).first;
            table[1][lane] = stateOf(isLeft(lane), i).second;
        });
        return {hn::Load(L::tag, table[0]), hn::Load(L::tag, table[1])};
    }

    LaneStates<L> lanes_;
};

/// Runs a call of any length; each lane starts with its first frame and stops after its last. Calls
/// `moveTo(step)` of the coefficients before every step.
template <typename L, typename Coefficients>
HWY_INLINE void runMasked(Coefficients c, StereoLanes<L> &states, float *left, float *right,
                          std::uint32_t frames, std::uint32_t delay) noexcept {
    StereoLanes<L> lanes = states;
    const auto end = hn::Add(c.startStep, hn::Set(L::tag, static_cast<float>(frames)));
    for (std::uint32_t step = 0; step < frames + delay; ++step) {
        const auto now = hn::Set(L::tag, static_cast<float>(step));
        const auto active = hn::And(hn::Ge(now, c.startStep), hn::Lt(now, end));
        const Frame input = step < frames ? Frame{left[step], right[step]} : Frame{0.0F, 0.0F};
        c.moveTo(now);
        const Frame output = lanes.step(c, input, active);
        if (step >= delay) {
            left[step - delay] = output.left;
            right[step - delay] = output.right;
        }
    }
    states = lanes;
}

/// Calls `run(first, count, layout)` for every pass over `count` sections.
template <typename Run> HWY_INLINE void forEachPass(std::size_t count, const Run &run) noexcept {
    using Wide = Layout<longestVector, false>;
    // Uses 16 lanes only where needed, because they cost some machines twice the work.
    using Narrow = Layout<8, false>;
    using Half = Layout<8, true>;
    // Balances the passes: ten sections on eight lanes take two passes of five.
    const std::size_t lanes = Wide::partLanes();
    const std::size_t passes = (count + lanes - 1) / lanes;
    for (std::size_t pass = 0, done = 0; pass < passes; ++pass) {
        const std::size_t part = (count - done + passes - pass - 1) / (passes - pass);
        if (part <= Half::partLanes())
            run(done, part, Half());
        else if (part <= Narrow::partLanes())
            run(done, part, Narrow());
        else
            run(done, part, Wide());
        done += part;
    }
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
