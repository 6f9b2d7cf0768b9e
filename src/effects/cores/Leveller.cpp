#include "effects/cores/Leveller.h"

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

/// The gain lags the level by one tile, which lets the square root and the division overlap the
/// recursions.
constexpr std::uint32_t tileFrames = 32;

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

/// Each frame's contribution to the mean square.
HWY_INLINE void measure(const float *left, const float *right, float share, Tile &powers) {
    for (std::size_t i = 0; i < tileFrames; i += hn::Lanes(tag)) {
        const auto l = hn::LoadU(tag, left + i);
        const auto r = hn::LoadU(tag, right + i);
        const auto power = hn::Add(hn::Mul(l, l), hn::Mul(r, r));
        hn::Store(hn::Mul(hn::Set(tag, share), power), tag, powers.samples + i);
    }
}

/// Each frame's share of the gain to keep, and the amount to add. Below the gate all is kept and
/// nothing added.
HWY_INLINE void aim(const LevellerSettings &settings, const Tile &meanSquares, Tile &kept,
                    Tile &added) {
    const auto share = hn::Set(tag, 1.0F - settings.keepGain);
    for (std::size_t i = 0; i < tileFrames; i += hn::Lanes(tag)) {
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

HWY_INLINE void apply(const Tile &gains, const Tile &trims, float *samples) {
    for (std::size_t i = 0; i < tileFrames; i += hn::Lanes(tag)) {
        const auto gained = hn::Mul(hn::LoadU(tag, samples + i), hn::Load(tag, gains.samples + i));
        hn::StoreU(hn::Mul(hn::Load(tag, trims.samples + i), gained), tag, samples + i);
    }
}

} // namespace

/// Processes whole tiles, at least one.
void runLevellerInLanes(const LevellerSettings &settings, LevellerState &state, float *left,
                        float *right, std::uint32_t frames) {
    const float keepLevel = settings.keepLevel;
    const float keepTrim = settings.keepTrim;
    const float trimStep = (1.0F - keepTrim) * settings.trimTarget;
    const float levelShare = (1.0F - keepLevel) * 0.5F;
    LevellerState s = state;
    // NOLINTBEGIN(cppcoreguidelines-pro-type-member-init): each is filled before it is read
    Tile meanSquares;
    Tile kept;
    Tile added;
    Tile gains;
    Tile trims;
    // NOLINTEND(cppcoreguidelines-pro-type-member-init)

    const auto follow = [&](std::uint32_t i) HWY_ATTR {
        s.meanSquare = keepLevel * s.meanSquare + meanSquares.samples[i];
        meanSquares.samples[i] = s.meanSquare;
    };
    const auto move = [&](std::uint32_t i) HWY_ATTR {
        s.gain = kept.samples[i] * s.gain + added.samples[i];
        gains.samples[i] = s.gain;
        s.trim = trimStep + keepTrim * s.trim;
        trims.samples[i] = s.trim;
    };

    measure(left, right, levelShare, meanSquares);
    for (std::uint32_t i = 0; i < tileFrames; ++i)
        follow(i);
    aim(settings, meanSquares, kept, added);
    for (std::uint32_t begin = tileFrames; begin < frames; begin += tileFrames) {
        measure(left + begin, right + begin, levelShare, meanSquares);
        for (std::uint32_t i = 0; i < tileFrames; ++i) {
            follow(i);
            move(i);
        }
        aim(settings, meanSquares, kept, added);
        apply(gains, trims, left + begin - tileFrames);
        apply(gains, trims, right + begin - tileFrames);
    }
    for (std::uint32_t i = 0; i < tileFrames; ++i)
        move(i);
    apply(gains, trims, left + frames - tileFrames);
    apply(gains, trims, right + frames - tileFrames);
    state = s;
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(runLevellerInLanes);

void runLeveller(const LevellerSettings &settings, LevellerState &state, float *left, float *right,
                 std::uint32_t frames) noexcept {
    const std::uint32_t tiled = frames - frames % tileFrames;
    if (tiled > 0)
        HWY_DYNAMIC_DISPATCH(runLevellerInLanes)(settings, state, left, right, tiled);
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
