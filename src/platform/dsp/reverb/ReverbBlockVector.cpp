#include "platform/dsp/reverb/ReverbBlock.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/dsp/reverb/ReverbBlockVector.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, ReverbTank::blockFrames>;
using Vector = hn::Vec<Tag>;

constexpr Tag tag;

/// Multiplications and additions are never fused: the plain code's sums are these.
HWY_INLINE Vector scaled(float factor, Vector samples) noexcept {
    return hn::Mul(hn::Set(tag, factor), samples);
}

/// The rings at the frames of one vector.
class RingsAt {
  public:
    RingsAt(const ReverbTank::Rings &rings, std::uint32_t position) noexcept
        : rings_(rings), position_(position), slot_(rings.slot(position)) {}

    HWY_INLINE Vector before(std::size_t ring, std::uint32_t delay) const noexcept {
        return hn::LoadU(tag, rings_.ring(ring) + rings_.slot(position_ - delay));
    }

    HWY_INLINE void write(std::size_t ring, Vector samples) const noexcept {
        float *target = rings_.ring(ring) + slot_;
        hn::StoreU(samples, tag, target);
        if (HWY_UNLIKELY(slot_ < ReverbTank::blockFrames))
            hn::StoreU(samples, tag, target + rings_.length);
    }

  private:
    const ReverbTank::Rings rings_;
    const std::uint32_t position_;
    const std::uint32_t slot_;
};

struct Branches {
    Vector p;
    Vector q;
};

HWY_INLINE Branches crossed(Vector p, Vector delayed) noexcept {
    return {hn::Add(p, delayed), hn::Sub(p, delayed)};
}

HWY_INLINE void hear(ReverbTank::State &state, const RingsAt &ring, std::size_t channel,
                     const float *input, std::uint32_t offset) noexcept {
    const Vector samples = hn::LoadU(tag, input + offset);
    const Vector heard =
        hn::IfThenElseZero(hn::Lt(hn::Abs(samples), hn::Set(tag, loudestReverbInput)), samples);
    hn::StoreU(heard, tag, state.heard[channel].data() + offset);
    const Vector frame = hn::Iota(tag, static_cast<float>(offset));
    ring.write(channel, hn::Sub(heard, hn::Add(hn::Set(tag, state.baseline[channel]),
                                               scaled(state.baselineStep[channel], frame))));
}

/// The first stage, on the pre-delayed input.
HWY_INLINE Branches entering(const RoomDesign &design, const RingsAt &input,
                             std::size_t channel) noexcept {
    return crossed(input.before(channel, design.preDelay),
                   input.before(channel, design.preDelay + design.stageDelays[channel][0]));
}

/// Stages `first` to `last`, excluded, of a diffuser.
HWY_INLINE Branches diffused(const RoomDesign &design, const RingsAt &rings, std::size_t channel,
                             std::size_t first, std::size_t last, Branches branches) noexcept {
    for (std::size_t stage = first; stage < last; ++stage) {
        const std::size_t ring = channel * (RoomDesign::stageCount - 1) + stage - 1;
        rings.write(ring, branches.q);
        branches = crossed(branches.p, rings.before(ring, design.stageDelays[channel][stage]));
    }
    return branches;
}

HWY_INLINE Vector absorbed(const RoomDesign &design, const RingsAt &lines,
                           std::size_t line) noexcept {
    const std::uint32_t delay = design.lineDelays[line];
    const Vector newer = lines.before(line, delay - design.spacing);
    const Vector middle = lines.before(line, delay);
    const Vector older = lines.before(line, delay + design.spacing);
    return hn::Add(scaled(design.centre[line], middle),
                   scaled(design.side[line], hn::Add(newer, older)));
}

HWY_INLINE Vector wet(const RoomDesign &design, Vector near, Vector far, Vector late) noexcept {
    return hn::Add(hn::Add(scaled(design.earlyNear, near), scaled(design.earlyFar, far)),
                   scaled(design.late, late));
}

HWY_INLINE void processFrames(ReverbTank::State &state, const ReverbTank::Block &block,
                              std::uint32_t offset) noexcept {
    const RoomDesign &design = state.design;
    const RingsAt input(state.input, state.position + offset);
    const RingsAt diffusers(state.diffusers, state.position + offset);
    const RingsAt lines(state.lines, state.position + offset);

    hear(state, input, 0, block.left, offset);
    hear(state, input, 1, block.right, offset);
    constexpr std::size_t early = RoomDesign::earlyStages;
    constexpr std::size_t all = RoomDesign::stageCount;
    const Branches earlyLeft = diffused(design, diffusers, 0, 1, early, entering(design, input, 0));
    const Branches earlyRight =
        diffused(design, diffusers, 1, 1, early, entering(design, input, 1));
    const Branches left = diffused(design, diffusers, 0, early, all, earlyLeft);
    const Branches right = diffused(design, diffusers, 1, early, all, earlyRight);

    const Branches a01 = crossed(absorbed(design, lines, 0), absorbed(design, lines, 1));
    const Branches a23 = crossed(absorbed(design, lines, 2), absorbed(design, lines, 3));
    const Branches b02 = crossed(a01.p, a23.p);
    const Branches b13 = crossed(a01.q, a23.q);
    const Branches a45 = crossed(absorbed(design, lines, 4), absorbed(design, lines, 5));
    const Branches a67 = crossed(absorbed(design, lines, 6), absorbed(design, lines, 7));
    const Branches b46 = crossed(a45.p, a67.p);
    const Branches b57 = crossed(a45.q, a67.q);
    const Branches c04 = crossed(b02.p, b46.p);
    const Branches c15 = crossed(b13.p, b57.p);
    const Branches c26 = crossed(b02.q, b46.q);
    const Branches c37 = crossed(b13.q, b57.q);

    const Vector lateLeft = hn::Add(c04.p, left.p);
    const Vector lateRight = hn::Add(c15.p, right.p);
    lines.write(1, lateLeft);
    lines.write(2, lateRight);
    lines.write(3, hn::Add(c26.p, left.q));
    lines.write(4, hn::Add(c37.p, right.q));
    lines.write(5, hn::Add(c04.q, right.q));
    lines.write(6, hn::Sub(c15.q, left.q));
    lines.write(7, hn::Sub(c26.q, right.p));
    lines.write(0, hn::Add(c37.q, left.p));

    hn::StoreU(wet(design, earlyLeft.p, earlyRight.q, lateLeft), tag, block.wetLeft + offset);
    hn::StoreU(wet(design, earlyRight.p, earlyLeft.q, lateRight), tag, block.wetRight + offset);
}

void processBlock(ReverbTank::State &state, const ReverbTank::Block &block) {
    for (std::uint32_t offset = 0; offset < ReverbTank::blockFrames;
         offset += static_cast<std::uint32_t>(hn::Lanes(tag)))
        processFrames(state, block, offset);
}

} // namespace
} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(processBlock);

void processReverbBlockVector(ReverbTank::State &state, const ReverbTank::Block &block) noexcept {
    HWY_DYNAMIC_DISPATCH(processBlock)(state, block);
}

} // namespace quorbel
#endif
