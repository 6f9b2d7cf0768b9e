#include "effects/cores/EnhancerPass.h"

#include "effects/cores/MidSide.h"
#include "platform/dsp/VectorTargets.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/EnhancerPass.cpp"
// Highway requires this order.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "effects/cores/StereoBank-inl.h"
#include "effects/cores/TanhShaper-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

#if HWY_TARGET != HWY_SCALAR

/// Runs widener and spatializer in three steps per tile. The spatializer's section is latency-bound
/// in a single lane; `frame` interleaves it with other work.
class SideSection {
  public:
    explicit SideSection(const EnhancerPass &pass)
        : width_(pass.width), c_(pass.dip.coefficients), sideGain_(pass.dip.sideGain) {
        HWY_ALIGN float inputs[bankFrames] = {};
        if (pass.side != nullptr) {
            outputs_ = {pass.side->y1, pass.side->y2};
            inputs[vectorLanes - 1] = pass.side->x1;
            inputs[vectorLanes - 2] = pass.side->x2;
        }
        inputs_ = hn::Load(tag, inputs);
    }

    void save(BiquadState &state) const {
        HWY_ALIGN float inputs[bankFrames];
        hn::Store(inputs_, tag, inputs);
        state = {inputs[vectorLanes - 1], inputs[vectorLanes - 2], outputs_.y1, outputs_.y2};
    }

    /// Computes `tile` up to the recursion, from its interleaved samples `pairs`.
    HWY_INLINE void begin(std::uint32_t tile, const float *pairs) {
        const Vector half = hn::Set(tag, 0.5F);
        for (std::uint32_t i = 0; i < bankFrames; i += vectorLanes) {
            Vector l;
            Vector r;
            hn::LoadInterleaved2(tag, pairs + 2 * i, l, r);
            const Vector width = widthFrom(bankFrames * tile + i);
            const Vector mid = hn::Mul(hn::Add(l, r), half);
            const Vector side = hn::Mul(hn::Mul(width, hn::Sub(l, r)), half);
            l = hn::Add(mid, side);
            r = hn::Sub(mid, side);
            const Vector raised = hn::Mul(hn::Mul(hn::Set(tag, sideGain_), hn::Sub(l, r)), half);
            hn::Store(hn::Mul(hn::Add(l, r), half), tag, mids_[tile % memory] + i);
            hn::Store(fed(raised), tag, fed_[tile % memory] + i);
        }
    }

    /// Last two outputs of the section; the caller keeps them in registers during a tile.
    struct Outputs {
        float y1 = 0.0F;
        float y2 = 0.0F;
    };
    [[nodiscard]] HWY_INLINE Outputs outputs() const { return outputs_; }
    HWY_INLINE void setOutputs(Outputs outputs) { outputs_ = outputs; }

    HWY_INLINE void frame(std::uint32_t tile, std::size_t i, Outputs &outputs) {
        const float y = fed_[tile % memory][i] - c_.a1 * outputs.y1 - c_.a2 * outputs.y2;
        outputs = {y, outputs.y1};
        sides_[tile % memory][i] = y;
    }

    HWY_INLINE void end(std::uint32_t tile, float *left, float *right) const {
        for (std::uint32_t i = 0; i < bankFrames; i += vectorLanes) {
            const Vector mid = hn::Load(tag, mids_[tile % memory] + i);
            const Vector side = hn::Load(tag, sides_[tile % memory] + i);
            hn::StoreU(hn::Add(mid, side), tag, left + bankFrames * tile + i);
            hn::StoreU(hn::Sub(mid, side), tag, right + bankFrames * tile + i);
        }
    }

  private:
    using Tag = hn::CappedTag<float, bankFrames>;
    using Vector = hn::Vec<Tag>;
    static constexpr Tag tag{};
    static constexpr std::size_t vectorLanes = hn::MaxLanes(Tag());

    /// Widths of the frames from `frame` on, as LinearRamp::at.
    HWY_INLINE Vector widthFrom(std::uint32_t frame) const {
        const Vector from = hn::Set(tag, width_.from());
        if (width_.step() == 0.0F)
            return from;
        const Vector position =
            hn::Div(hn::Iota(tag, static_cast<float>(frame)), hn::Set(tag, width_.last()));
        return hn::Add(from, hn::Mul(hn::Set(tag, width_.step()), position));
    }

    /// Contribution of the section's inputs to its outputs: the first sums of BiquadState::process.
    HWY_INLINE Vector fed(Vector x) {
        // The frames before this vector, in 128-bit blocks.
        const Vector earlier = vectorLanes == 8 ? hn::ConcatLowerUpper(tag, x, inputs_) : inputs_;
        const Vector x1 = hn::CombineShiftRightBytes<12>(tag, x, earlier);
        const Vector x2 = hn::CombineShiftRightBytes<8>(tag, x, earlier);
        inputs_ = x;
        return hn::Add(hn::Add(hn::Mul(hn::Set(tag, c_.b0), x), hn::Mul(hn::Set(tag, c_.b1), x1)),
                       hn::Mul(hn::Set(tag, c_.b2), x2));
    }

    static constexpr std::uint32_t memory = 4; // in tiles: more than the steps that a tile takes

    LinearRamp width_;
    BiquadCoefficients c_;
    float sideGain_;
    Outputs outputs_;
    Vector inputs_; ///< newest vector
    alignas(32) float mids_[memory][bankFrames];
    alignas(32) float fed_[memory][bankFrames];
    alignas(32) float sides_[memory][bankFrames];
};

/// Runs the bass enhancer and the stages after it in one loop, each some tiles behind the previous
/// one.
///
/// 1. A step does the elementwise work first, then the sections' recursions; only later steps use
///    the sections' outputs.
/// 2. The recursions are latency-bound: elementwise work before a section reads no result of the
///    previous step, whose recursions would stall it.
template <bool hasVoice, bool hasSide> class EnhancerLanes {
  public:
    /// Covers `tiles` whole tiles, at least one.
    EnhancerLanes(const EnhancerPass &pass, float *left, float *right, std::uint32_t tiles)
        : pass_(pass), left_(left), right_(right), tiles_(tiles) {}

    void run() {
        StereoSection none;
        const BankSection sections[bankSections] = {
            {&pass_.bass.lowPass, &pass_.bassSections->lowPass, 0},
            {&pass_.bass.highPass, &pass_.bassSections->highPass, highPassLag},
            {&pass_.voice.mud, hasVoice ? &pass_.voiceSections->mud : &none, bassLag},
            {&pass_.voice.presence, hasVoice ? &pass_.voiceSections->presence : &none,
             presenceLag}};
        Banks banks(sections);
        SideSection side(pass_);
        const std::uint32_t steps = tiles_ + endLag_;
        std::uint32_t step = 0;
        while (step < steps) {
            while (step < steps && (step < endLag_ || step >= tiles_))
                doStep<false>(step++, banks, side);
            while (step < tiles_)
                doStep<true>(step++, banks, side);
        }
        banks.last.save(sections);
        if constexpr (hasSide)
            side.save(*pass_.side);
    }

  private:
    // Lag of each stage behind the first, in tiles.
    static constexpr std::uint32_t shapeLag = 2;
    static constexpr std::uint32_t highPassLag = shapeLag + 1;
    static constexpr std::uint32_t bassLag = highPassLag + 2;
    static constexpr std::uint32_t presenceLag = bassLag + 1;
    static constexpr std::uint32_t sideLag = hasVoice ? presenceLag + 2 : bassLag;

    /// Interleaved stereo frames.
    struct alignas(64) Tile {
        float dry[2 * bankFrames]; ///< input, then the bass and at last the voice enhancer's output
        float wet[2 * bankFrames]; ///< output of one section after the other
    };
    static constexpr std::uint32_t ringTiles = 16;
    static_assert(sideLag + 2 < ringTiles);

    using Pairs = hn::CappedTag<float, 2 * bankFrames>;
    static constexpr Pairs pairs{};
    using Channel = hn::CappedTag<float, bankFrames>;
    static constexpr Channel channel{};

    HWY_INLINE Tile &at(std::uint32_t tile) { return ring_[tile % ringTiles]; }

    /// Sections process silence before their first tile and after their last; that state is
    /// dropped.
    struct Banks {
        explicit Banks(const BankSection (&sections)[bankSections])
            : first(sections), now(first), last(first) {}
        const StereoBank first; ///< at the start of the call
        StereoBank now;
        StereoBank last; ///< each section after its last tile
    };

    static bool isLag(std::uint32_t steps) {
        return steps == 0 || steps == highPassLag || steps == bassLag || steps == presenceLag;
    }

    /// Renders one tile of every stage; if not `whole`, only of those that have one in this step.
    template <bool whole>
    HWY_INLINE void doStep(std::uint32_t step, Banks &banks, SideSection &side) {
        const auto hasTile = [&](std::uint32_t lag) { return whole || step - lag < tiles_; };
        if (hasSide && hasTile(endLag_))
            side.end(step - endLag_, left_, right_);
        if (hasTile(0))
            read(step);
        if (hasTile(shapeLag))
            shape(at(step - shapeLag));
        if (hasTile(bassLag))
            mixBass(step - bassLag);
        if (hasVoice && hasTile(sideLag))
            mixVoice(at(step - sideLag));
        if (hasSide && hasTile(sideLag))
            side.begin(step - sideLag, at(step - sideLag).dry);
        if (!hasSide && hasTile(endLag_))
            write(step - endLag_);

        HWY_ALIGN const float silence[2 * bankFrames] = {};
        HWY_ALIGN float unused[2 * bankFrames];
        const auto in = [&](std::uint32_t lag, const float *signal) {
            return hasTile(lag) ? signal : silence;
        };
        const auto out = [&](std::uint32_t lag) {
            return hasTile(lag) ? at(step - lag).wet : unused;
        };
        const float *const inputs[bankSections] = {
            in(0, at(step).dry), in(highPassLag, at(step - highPassLag).wet),
            hasVoice ? in(bassLag, at(step - bassLag).dry) : silence,
            hasVoice ? in(presenceLag, at(step - presenceLag).wet) : silence};
        float *const outputs[bankSections] = {out(0), out(highPassLag),
                                              hasVoice ? out(bassLag) : unused,
                                              hasVoice ? out(presenceLag) : unused};
        if (!whole && isLag(step))
            banks.now.takeOver(banks.first, step);
        if (hasSide && hasTile(sideSectionLag_)) {
            SideSection::Outputs last = side.outputs();
            banks.now.process(inputs, outputs, [&](std::size_t i) HWY_ATTR {
                side.frame(step - sideSectionLag_, i, last);
            });
            side.setOutputs(last);
        } else {
            banks.now.process(inputs, outputs, [](std::size_t) {});
        }
        if (isLag(step + 1 - tiles_))
            banks.last.takeOver(banks.now, step + 1 - tiles_);
    }

    HWY_INLINE void read(std::uint32_t tile) {
        const std::uint32_t begin = bankFrames * tile;
        for (std::size_t i = 0; i < bankFrames; i += hn::Lanes(channel))
            hn::StoreInterleaved2(hn::LoadU(channel, left_ + begin + i),
                                  hn::LoadU(channel, right_ + begin + i), channel,
                                  at(tile).dry + 2 * i);
    }

    HWY_INLINE void write(std::uint32_t tile) {
        const std::uint32_t begin = bankFrames * tile;
        for (std::size_t i = 0; i < bankFrames; i += hn::Lanes(channel)) {
            hn::Vec<Channel> l;
            hn::Vec<Channel> r;
            hn::LoadInterleaved2(channel, at(tile).dry + 2 * i, l, r);
            hn::StoreU(l, channel, left_ + begin + i);
            hn::StoreU(r, channel, right_ + begin + i);
        }
    }

    HWY_INLINE void shape(Tile &tile) {
        const auto drive = hn::Set(pairs, pass_.bass.drive);
        for (std::size_t i = 0; i < 2 * bankFrames; i += hn::Lanes(pairs))
            hn::Store(shapedByTanh(hn::Load(pairs, tile.wet + i), drive), pairs, tile.wet + i);
    }

    HWY_INLINE void mixBass(std::uint32_t index) {
        Tile &tile = at(index);
        const auto wet = hn::Set(pairs, pass_.bass.wet);
        const auto total = hn::Set(pairs, pass_.bass.total);
        for (std::size_t i = 0; i < 2 * bankFrames; i += hn::Lanes(pairs)) {
            const auto added = hn::Mul(wet, hn::Load(pairs, tile.wet + i));
            hn::Store(hn::Div(hn::Add(hn::Load(pairs, tile.dry + i), added), total), pairs,
                      tile.dry + i);
        }
        if (pass_.bassMono == nullptr)
            return;
        for (std::size_t i = 0; i < bankFrames; i += hn::Lanes(channel)) {
            hn::Vec<Channel> l;
            hn::Vec<Channel> r;
            hn::LoadInterleaved2(channel, tile.dry + 2 * i, l, r);
            hn::StoreU(hn::Mul(hn::Add(l, r), hn::Set(channel, 0.5F)), channel,
                       pass_.bassMono + bankFrames * index + i);
        }
    }

    HWY_INLINE void mixVoice(Tile &tile) {
        const auto mix = hn::Set(pairs, pass_.voice.mix);
        for (std::size_t i = 0; i < 2 * bankFrames; i += hn::Lanes(pairs)) {
            const auto dry = hn::Load(pairs, tile.dry + i);
            const auto shaped = hn::Load(pairs, tile.wet + i);
            hn::Store(hn::Add(dry, hn::Mul(mix, hn::Sub(shaped, dry))), pairs, tile.dry + i);
        }
    }

    const EnhancerPass pass_;
    float *const left_;
    float *const right_;
    const std::uint32_t tiles_;
    // The spatializer's section is latency-bound: an input from the previous step shortens its
    // wait. In a short call the additional step would cost more.
    const std::uint32_t sideSectionLag_ = tiles_ < 16 ? sideLag : sideLag + 1;
    const std::uint32_t endLag_ = hasSide ? sideSectionLag_ + 1 : sideLag;
    Tile ring_[ringTiles]; ///< newest tiles
};

#endif

} // namespace

/// Renders whole tiles, at least one. Returns false if these stages have no joint pass.
bool enhanceInLanes(const EnhancerPass &pass, float *left, float *right, std::uint32_t frames) {
#if HWY_TARGET == HWY_SCALAR
    (void)pass, (void)left, (void)right, (void)frames;
    return false;
#else
    const std::uint32_t tiles = frames / bankFrames;
    const bool hasVoice = pass.voiceSections != nullptr;
    const bool hasSide = pass.side != nullptr;
    if (pass.bassSections == nullptr || (hasVoice && !hasSide))
        return false;
    if (hasVoice)
        EnhancerLanes<true, true>(pass, left, right, tiles).run();
    else if (hasSide)
        EnhancerLanes<false, true>(pass, left, right, tiles).run();
    else
        EnhancerLanes<false, false>(pass, left, right, tiles).run();
    return true;
#endif
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(enhanceInLanes);

namespace {

using HWY_NAMESPACE::bankFrames;

/// Shorter calls end before the stages overlap.
constexpr std::uint32_t shortestEnhancerPass = 16;

/// Renders the frames from `begin` on.
void enhanceRest(const EnhancerPass &pass, float *left, float *right, std::uint32_t begin,
                 std::uint32_t frames) noexcept {
    const std::uint32_t count = frames - begin;
    float *const l = left + begin;
    float *const r = right + begin;
    if (pass.bassSections != nullptr)
        addBassHarmonics(pass.bass, *pass.bassSections, l, r, count);
    if (pass.bassMono != nullptr)
        for (std::uint32_t i = 0; i < count; ++i)
            pass.bassMono[begin + i] = (l[i] + r[i]) * 0.5F;
    if (pass.voiceSections != nullptr)
        clarify(pass.voice, *pass.voiceSections, l, r, count);
    if (pass.side == nullptr)
        return;
    widen(l, r, count, pass.width, begin);
    spatialize(pass.dip, *pass.side, l, r, count);
}

} // namespace

void enhance(const EnhancerPass &pass, float *left, float *right, std::uint32_t frames) noexcept {
    if (pass.isVoiceAlone()) {
        clarifySideBySide(pass.voice, *pass.voiceSections, left, right, frames);
        return;
    }
    std::uint32_t tiled = frames - frames % bankFrames;
    if (tiled < shortestEnhancerPass ||
        !HWY_DYNAMIC_DISPATCH(enhanceInLanes)(pass, left, right, tiled))
        tiled = 0;
    enhanceRest(pass, left, right, tiled, frames);
}

void enhancePlainly(const EnhancerPass &pass, float *left, float *right,
                    std::uint32_t frames) noexcept {
    enhanceRest(pass, left, right, 0, frames);
}

} // namespace quorbel
#endif
