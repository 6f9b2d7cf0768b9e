#include "effects/cores/Leveller.h"

#include "effects/cores/CrossfeedBlock.h"
#include "platform/dsp/VectorTargets.h"

#include <algorithm>
#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/Leveller.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#ifndef QUORBEL_LEVELLER_ONCE
#define QUORBEL_LEVELLER_ONCE
namespace quorbel {
namespace {

constexpr float gateLevel = 0.0056234F; // −45 dBFS: below, the gain is held
constexpr float smallestGain = 0.25F;   // −12 dB
constexpr float largestGain = 4.0F;     // +12 dB

/// Lagging the gain by one tile lets the square root and the division overlap the recursions.
constexpr std::uint32_t tileFrames = 32;
/// Behind a crossfeed, which adds a tile in flight.
constexpr std::uint32_t crossfedTileFrames = 16;

struct alignas(64) Tile {
    float samples[tileFrames];
};

} // namespace
} // namespace quorbel
#endif

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, 16>;
constexpr Tag tag;

/// Computes each frame's contribution to the mean square.
template <std::uint32_t frames>
HWY_INLINE void measure(const float *left, const float *right, float share, Tile &powers) {
    for (std::size_t i = 0; i < frames; i += hn::Lanes(tag)) {
        const auto l = hn::LoadU(tag, left + i);
        const auto r = hn::LoadU(tag, right + i);
        const auto power = hn::Add(hn::Mul(l, l), hn::Mul(r, r));
        hn::Store(hn::Mul(hn::Set(tag, share), power), tag, powers.samples + i);
    }
}

/// Computes each frame's smoothing coefficient and addend of the gain. Below the gate they are 1
/// and 0.
template <std::uint32_t frames>
HWY_INLINE void aim(const LevellerSettings &settings, const Tile &meanSquares, Tile &kept,
                    Tile &added) {
    const auto share = hn::Set(tag, 1.0F - settings.keepGain);
    for (std::size_t i = 0; i < frames; i += hn::Lanes(tag)) {
        const auto rms = hn::Sqrt(hn::Load(tag, meanSquares.samples + i));
        const auto open = hn::Gt(rms, hn::Set(tag, gateLevel));
        const auto desired = hn::Min(
            hn::Max(hn::Div(hn::Set(tag, settings.target), rms), hn::Set(tag, smallestGain)),
            hn::Set(tag, largestGain));
        hn::Store(hn::IfThenElse(open, hn::Set(tag, settings.keepGain), hn::Set(tag, 1.0F)), tag,
                  kept.samples + i);
        hn::Store(hn::IfThenElseZero(open, hn::Mul(share, desired)), tag, added.samples + i);
    }
}

template <std::uint32_t frames>
HWY_INLINE void apply(const Tile &gains, const Tile &trims, float *samples) {
    for (std::size_t i = 0; i < frames; i += hn::Lanes(tag)) {
        const auto gained = hn::Mul(hn::LoadU(tag, samples + i), hn::Load(tag, gains.samples + i));
        hn::StoreU(hn::Mul(hn::Load(tag, trims.samples + i), gained), tag, samples + i);
    }
}

/// Runs the leveller's recursions frame by frame over one tile at a time, with elementwise work
/// before and after. The gain's recursion uses the `aim` of the previously followed tile.
template <std::uint32_t frames> class LevellerLanes {
  public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): tiles are filled before they are read
    HWY_INLINE explicit LevellerLanes(const LevellerSettings &settings)
        : settings_(settings), keepLevel_(settings.keepLevel), keepTrim_(settings.keepTrim),
          trimStep_((1.0F - settings.keepTrim) * settings.trimTarget),
          levelShare_((1.0F - settings.keepLevel) * 0.5F) {}

    HWY_INLINE void measure(const float *left, const float *right) {
        quorbel::HWY_NAMESPACE::measure<frames>(left, right, levelShare_, meanSquares_);
    }
    [[gnu::always_inline]] void follow(std::uint32_t i, LevellerState &s) {
        s.meanSquare = keepLevel_ * s.meanSquare + meanSquares_.samples[i];
        meanSquares_.samples[i] = s.meanSquare;
    }
    HWY_INLINE void aim() {
        quorbel::HWY_NAMESPACE::aim<frames>(settings_, meanSquares_, kept_, added_);
    }
    [[gnu::always_inline]] void move(std::uint32_t i, LevellerState &s) {
        s.gain = kept_.samples[i] * s.gain + added_.samples[i];
        gains_.samples[i] = s.gain;
        s.trim = trimStep_ + keepTrim_ * s.trim;
        trims_.samples[i] = s.trim;
    }
    HWY_INLINE void apply(float *left, float *right) const {
        quorbel::HWY_NAMESPACE::apply<frames>(gains_, trims_, left);
        quorbel::HWY_NAMESPACE::apply<frames>(gains_, trims_, right);
    }

  private:
    const LevellerSettings &settings_;
    const float keepLevel_;
    const float keepTrim_;
    const float trimStep_;
    const float levelShare_;
    Tile meanSquares_;
    Tile kept_;
    Tile added_;
    Tile gains_;
    Tile trims_;
};

} // namespace

/// Processes whole tiles, at least one.
void runLevellerInLanes(const LevellerSettings &settings, LevellerState &state, float *left,
                        float *right, std::uint32_t frames) {
    LevellerState s = state;
    LevellerLanes<tileFrames> lanes(settings);
    lanes.measure(left, right);
    for (std::uint32_t i = 0; i < tileFrames; ++i)
        lanes.follow(i, s);
    lanes.aim();
    for (std::uint32_t begin = tileFrames; begin < frames; begin += tileFrames) {
        lanes.measure(left + begin, right + begin);
        for (std::uint32_t i = 0; i < tileFrames; ++i) {
            lanes.follow(i, s);
            lanes.move(i, s);
        }
        lanes.aim();
        lanes.apply(left + begin - tileFrames, right + begin - tileFrames);
    }
    for (std::uint32_t i = 0; i < tileFrames; ++i)
        lanes.move(i, s);
    lanes.apply(left + frames - tileFrames, right + frames - tileFrames);
    state = s;
}

/// Processes whole tiles, at least two: the leveller follows a tile's level one step after the
/// crossfeed, and moves its gain another step later.
void runCrossfedLevellerInLanes(CrossfeedBlock &crossfeed, const LevellerSettings &settings,
                                LevellerState &state, float *left, float *right,
                                std::uint32_t frames) {
    constexpr std::uint32_t length = crossfedTileFrames;
    LevellerState s = state;
    LevellerLanes<length> lanes(settings);
    crossfeed.run(length, [](std::uint32_t) {});
    lanes.measure(left, right);
    crossfeed.run(length, [&](std::uint32_t i) { lanes.follow(i, s); });
    lanes.aim();
    lanes.measure(left + length, right + length);
    for (std::uint32_t begin = 2 * length; begin < frames; begin += length) {
        crossfeed.run(length, [&](std::uint32_t i) {
            lanes.follow(i, s);
            lanes.move(i, s);
        });
        lanes.aim();
        lanes.measure(left + begin, right + begin);
        lanes.apply(left + begin - 2 * length, right + begin - 2 * length);
    }
    for (std::uint32_t i = 0; i < length; ++i) {
        lanes.follow(i, s);
        lanes.move(i, s);
    }
    lanes.aim();
    lanes.apply(left + frames - 2 * length, right + frames - 2 * length);
    for (std::uint32_t i = 0; i < length; ++i)
        lanes.move(i, s);
    lanes.apply(left + frames - length, right + frames - length);
    state = s;
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(runLevellerInLanes);
HWY_EXPORT(runCrossfedLevellerInLanes);

void runLeveller(const LevellerSettings &settings, LevellerState &state, float *left, float *right,
                 std::uint32_t frames) noexcept {
    const std::uint32_t tiled = frames - frames % tileFrames;
    if (tiled > 0)
        HWY_DYNAMIC_DISPATCH(runLevellerInLanes)(settings, state, left, right, tiled);
    runLevellerPlainly(settings, state, left + tiled, right + tiled, frames - tiled);
}

void runCrossfedLeveller(CrossfeedBlock &crossfeed, const LevellerSettings &settings,
                         LevellerState &state, float *left, float *right,
                         std::uint32_t frames) noexcept {
    constexpr std::uint32_t tile = crossfedTileFrames;
    const std::uint32_t tiled = frames < 2 * tile ? 0 : frames - frames % tile;
    if (tiled > 0)
        HWY_DYNAMIC_DISPATCH(runCrossfedLevellerInLanes)
    (crossfeed, settings, state, left, right, tiled);
    crossfeed.finish();
    runLevellerPlainly(settings, state, left + tiled, right + tiled, frames - tiled);
}

void runLevellerPlainly(const LevellerSettings &settings, LevellerState &state, float *left,
                        float *right, std::uint32_t frames) noexcept {
    const auto &[keepLevel, keepGain, keepTrim, target, trimTarget] = settings;
    auto [meanSquare, gain, trim] = state;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float power = left[i] * left[i] + right[i] * right[i];
        meanSquare = keepLevel * meanSquare + (1.0F - keepLevel) * 0.5F * power;
        const float rms = std::sqrt(meanSquare);
        if (rms > gateLevel) {
            const float desired = std::clamp(target / rms, smallestGain, largestGain);
            gain = keepGain * gain + (1.0F - keepGain) * desired;
        }
        trim = (1.0F - keepTrim) * trimTarget + keepTrim * trim;
        left[i] = trim * (left[i] * gain);
        right[i] = trim * (right[i] * gain);
    }
    state = {meanSquare, gain, trim};
}

} // namespace quorbel
#endif
