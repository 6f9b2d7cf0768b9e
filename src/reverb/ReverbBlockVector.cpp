#include "platform/dsp/VectorTargets.h"
#include "reverb/ReverbBlock.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "reverb/ReverbBlockVector.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, ReverbTank::blockFrames / 2>;
using Vector = hn::Vec<Tag>;

constexpr Tag tag;

/// Number of vectors that share an address computation.
constexpr std::size_t together = 2;
struct Pair {
    Vector first;
    Vector second;
};

HWY_INLINE Pair load(const float *samples) noexcept {
    return {hn::LoadU(tag, samples), hn::LoadU(tag, samples + hn::Lanes(tag))};
}
HWY_INLINE void store(Pair pair, float *samples) noexcept {
    hn::StoreU(pair.first, tag, samples);
    hn::StoreU(pair.second, tag, samples + hn::Lanes(tag));
}
HWY_INLINE Pair add(Pair a, Pair b) noexcept {
    return {hn::Add(a.first, b.first), hn::Add(a.second, b.second)};
}
HWY_INLINE Pair sub(Pair a, Pair b) noexcept {
    return {hn::Sub(a.first, b.first), hn::Sub(a.second, b.second)};
}

/// Never fuses multiplications and additions, to match the plain code bit by bit.
HWY_INLINE Vector scaled(float factor, Vector samples) noexcept {
    return hn::Mul(hn::Set(tag, factor), samples);
}
HWY_INLINE Pair scaled(float factor, Pair samples) noexcept {
    return {scaled(factor, samples.first), scaled(factor, samples.second)};
}

/// Write position in a set of rings.
class Writer {
  public:
    HWY_INLINE Writer(const ReverbTank::Rings &rings, std::uint32_t position) noexcept
        : first_(rings.memory + (position & (rings.length - 1))), stride_(rings.stride()) {}

    HWY_INLINE float *operator()(std::size_t ring) const noexcept {
        return first_ + ring * stride_;
    }

  private:
    float *const first_;
    const std::size_t stride_;
};

/// Positions of the read heads.
class Reader {
  public:
    HWY_INLINE Reader(const float *memory, const std::uint32_t *heads) noexcept
        : memory_(memory), heads_(heads) {}

    HWY_INLINE const float *operator()(std::size_t head) const noexcept {
        return memory_ + heads_[head];
    }

  private:
    const float *const memory_;
    const std::uint32_t *const heads_;
};

template <typename V> struct Branches {
    V p;
    V q;
};

HWY_INLINE Branches<Pair> crossed(Pair p, Pair delayed) noexcept {
    return {add(p, delayed), sub(p, delayed)};
}
HWY_INLINE Branches<Vector> crossed(Vector p, Vector delayed) noexcept {
    return {hn::Add(p, delayed), hn::Sub(p, delayed)};
}

HWY_INLINE Vector finite(Vector samples) noexcept {
    return hn::IfThenElseZero(hn::Lt(hn::Abs(samples), hn::Set(tag, loudestReverbInput)), samples);
}

HWY_INLINE Pair heard(ReverbTank::State &state, std::size_t channel, Pair samples,
                      std::uint32_t offset) noexcept {
    const Pair heard{finite(samples.first), finite(samples.second)};
    float *sums = state.heard[channel].data() + offset;
    store(add(load(sums), heard), sums);
    const std::uint32_t inMean = (state.position + offset) % ReverbTank::meanFrames;
    return sub(heard, load(state.baseline[channel].data() + inMean));
}

/// Runs the first stage on the pre-delayed input.
HWY_INLINE Branches<Pair> entering(const Reader &read, std::size_t channel) noexcept {
    return crossed(load(read(ReverbTank::inputHead + channel)),
                   load(read(ReverbTank::delayedHead + channel)));
}

/// Runs stages `first` to `last`, excluded, of a diffuser.
template <std::size_t first, std::size_t last>
HWY_INLINE Branches<Pair> diffused(const Reader &read, const Writer &write, std::size_t channel,
                                   Branches<Pair> branches) noexcept {
    if constexpr (first == last) {
        return branches;
    } else {
        const std::size_t ring = channel * ReverbTank::diffuserRings + first - 1;
        store(branches.q, write(ring));
        const Pair delayed = load(read(ReverbTank::diffuserHead + ring));
        return diffused<first + 1, last>(read, write, channel, crossed(branches.p, delayed));
    }
}

/// Returns the output of a line with its oldest tap at `older`.
HWY_INLINE Vector absorbed(const RoomDesign &design, std::size_t line,
                           const float *older) noexcept {
    const std::size_t spacing = design.spacing;
    const Vector outer = hn::Add(hn::LoadU(tag, older + 2 * spacing), hn::LoadU(tag, older));
    return hn::Add(scaled(design.centre[line], hn::LoadU(tag, older + spacing)),
                   scaled(design.side[line], outer));
}

struct Late {
    Vector left;
    Vector right;
};

/// Runs one vector through the network, `offset` frames from the heads.
HWY_INLINE Late circulated(const RoomDesign &design, const Reader &read, const Writer &write,
                           std::size_t offset, Branches<Vector> left,
                           Branches<Vector> right) noexcept {
    const auto line = [&](std::size_t index) HWY_ATTR {
        return absorbed(design, index, read(ReverbTank::lineHead + index) + offset);
    };
    const auto a01 = crossed(line(0), line(1));
    const auto a23 = crossed(line(2), line(3));
    const auto b02 = crossed(a01.p, a23.p);
    const auto b13 = crossed(a01.q, a23.q);
    const auto a45 = crossed(line(4), line(5));
    const auto a67 = crossed(line(6), line(7));
    const auto b46 = crossed(a45.p, a67.p);
    const auto b57 = crossed(a45.q, a67.q);
    const auto c04 = crossed(b02.p, b46.p);
    const auto c15 = crossed(b13.p, b57.p);
    const auto c26 = crossed(b02.q, b46.q);
    const auto c37 = crossed(b13.q, b57.q);

    const auto enter = [&](std::size_t index, Vector samples)
                           HWY_ATTR { hn::StoreU(samples, tag, write(index) + offset); };
    const auto p = crossed(left.p, right.p);
    const auto q = crossed(left.q, right.q);
    enter(1, hn::Add(c04.p, p.p));
    enter(2, hn::Add(c15.p, p.q));
    enter(3, hn::Add(c26.p, q.p));
    enter(4, hn::Add(c37.p, q.q));
    enter(5, hn::Add(c04.q, q.q));
    enter(6, hn::Sub(c15.q, q.p));
    enter(7, hn::Sub(c26.q, p.q));
    enter(0, hn::Add(c37.q, p.p));
    return {hn::Add(hn::Add(c04.p, c15.p), hn::Sub(c26.p, c37.p)),
            hn::Add(hn::Add(c04.q, c15.q), hn::Sub(c26.q, c37.q))};
}

struct Room {
    Pair near;
    Pair far;
    Pair diffuse;
    Pair late;
};

HWY_INLINE Pair mixed(const RoomDesign &design, const ReverbTank::Gains &gains, Pair direct,
                      const Room &room) noexcept {
    const Pair reflections =
        add(scaled(design.earlyNear, room.near), scaled(design.earlyFar, room.far));
    const Pair reverberation =
        add(scaled(design.diffuse, room.diffuse), scaled(design.late, room.late));
    return add(scaled(gains.dry, direct), scaled(gains.wet, add(reflections, reverberation)));
}

HWY_INLINE void processFrames(ReverbTank::State &state, const ReverbTank::Block &block,
                              const std::uint32_t *heads, std::uint32_t frame,
                              std::uint32_t offset) noexcept {
    const RoomDesign &design = state.design;
    const std::uint32_t position = state.position + offset;
    const Reader read(state.memory + offset, heads);
    const Writer hear(state.input, position);
    const Writer diffuse(state.diffusers, position);
    const Writer enter(state.lines, position);
    const Pair directLeft = load(block.left + frame);
    const Pair directRight = load(block.right + frame);

    store(heard(state, 0, directLeft, offset), hear(0));
    store(heard(state, 1, directRight, offset), hear(1));
    constexpr std::size_t early = RoomDesign::earlyStages;
    constexpr std::size_t all = RoomDesign::stageCount;
    const Branches<Pair> earlyLeft = diffused<1, early>(read, diffuse, 0, entering(read, 0));
    const Branches<Pair> earlyRight = diffused<1, early>(read, diffuse, 1, entering(read, 1));
    const Branches<Pair> left = diffused<early, all>(read, diffuse, 0, earlyLeft);
    const Branches<Pair> right = diffused<early, all>(read, diffuse, 1, earlyRight);

    const Late first = circulated(design, read, enter, 0, {left.p.first, left.q.first},
                                  {right.p.first, right.q.first});
    const Late second =
        circulated(design, read, enter, hn::Lanes(tag), {left.p.second, left.q.second},
                   {right.p.second, right.q.second});

    store(mixed(design, block.gains, directLeft,
                {earlyLeft.p, earlyRight.q, left.p, {first.left, second.left}}),
          block.outLeft + frame);
    store(mixed(design, block.gains, directRight,
                {earlyRight.p, earlyLeft.q, right.p, {first.right, second.right}}),
          block.outRight + frame);
}

/// Computes the read heads' offsets into the memory at `position`.
HWY_INLINE void placeHeads(const ReverbTank::State &state, std::uint32_t position,
                           std::uint32_t *heads) noexcept {
    using Index = hn::CappedTag<std::uint32_t, ReverbTank::paddedReadHeadCount>;
    constexpr Index index;
    for (std::size_t head = 0; head < ReverbTank::paddedReadHeadCount; head += hn::Lanes(index)) {
        const auto back = hn::LoadU(index, state.headDelay.data() + head);
        const auto mask = hn::LoadU(index, state.headMask.data() + head);
        const auto ring = hn::LoadU(index, state.headRing.data() + head);
        const auto slot = hn::And(hn::Sub(hn::Set(index, position), back), mask);
        hn::Store(hn::Add(ring, slot), index, heads + head);
    }
}

void processBlocks(ReverbTank::State &state, const ReverbTank::Block &block) {
    constexpr std::uint32_t blockFrames = ReverbTank::blockFrames;
    // Store forwarding is the bottleneck: scalar loads stall on a vector store until it has reached
    // the cache. So the heads are computed a block ahead.
    constexpr std::uint32_t ahead = 1;
    HWY_ALIGN std::uint32_t heads[ahead + 1][ReverbTank::paddedReadHeadCount];
    for (std::uint32_t i = 0; i < ahead; ++i)
        placeHeads(state, state.position + i * blockFrames, heads[i]);
    std::uint32_t current = 0;
    for (std::uint32_t frame = 0; frame < block.frames; frame += blockFrames) {
        placeHeads(state, state.position + ahead * blockFrames,
                   heads[(current + ahead) % (ahead + 1)]);
        for (std::uint32_t offset = 0; offset < blockFrames;
             offset += static_cast<std::uint32_t>(together * hn::Lanes(tag)))
            processFrames(state, block, heads[current], frame + offset, offset);
        current = (current + 1) % (ahead + 1);
        advanceReverb(state, blockFrames);
    }
}

} // namespace
} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(processBlocks);

void processReverbBlocks(ReverbTank::State &state, const ReverbTank::Block &block) noexcept {
    HWY_DYNAMIC_DISPATCH(processBlocks)(state, block);
}

} // namespace quorbel
#endif
