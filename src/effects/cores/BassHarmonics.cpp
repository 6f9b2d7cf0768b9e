#include "effects/cores/BassHarmonics.h"

#include "effects/cores/TanhShaper.h"
#include "platform/dsp/VectorTargets.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/BassHarmonics.cpp"
// In the order in which Highway wants them.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "effects/cores/TanhShaper-inl.h"
// clang-format on

#ifndef QUORBEL_BASS_TILE
#define QUORBEL_BASS_TILE
namespace quorbel {
namespace {

/// Eight frames, left and right in turn.
struct BassTile {
    static constexpr std::uint32_t frames = 8;
    alignas(64) float samples[2 * frames];
};

/// The high-pass is so many tiles behind the low-pass, so that all four recursions run side by side
/// and the shaper, which takes longer than a tile, has its time in between.
constexpr std::uint32_t lagTiles = 3;

} // namespace
} // namespace quorbel
#endif

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

HWY_INLINE void shape(const BassTile &bass, float drive, BassTile &shaped) {
    const hn::CappedTag<float, 2 * BassTile::frames> tag;
    for (std::size_t i = 0; i < 2 * BassTile::frames; i += hn::Lanes(tag))
        hn::Store(shapedByTanh(hn::Load(tag, bass.samples + i), hn::Set(tag, drive)), tag,
                  shaped.samples + i);
}

} // namespace

/// Whole tiles, more than the lag.
void addBassHarmonicsInLanes(const BassHarmonics &h, BassSections &sections, float *left,
                             float *right, std::uint32_t frames) {
    const std::uint32_t tiles = frames / BassTile::frames;
    BassTile bass[lagTiles];
    BassTile shaped[lagTiles];
    for (std::uint32_t tile = 0; tile < lagTiles; ++tile) {
        for (std::uint32_t i = 0; i < BassTile::frames; ++i) {
            const std::uint32_t frame = tile * BassTile::frames + i;
            float *const samples = bass[tile].samples + 2 * i;
            samples[0] = sections.lowPass.left.process(h.lowPass, left[frame]);
            samples[1] = sections.lowPass.right.process(h.lowPass, right[frame]);
        }
    }
    shape(bass[0], h.drive, shaped[0]);

    const auto mix = [&](std::uint32_t begin, FourFrames::Channels harmonics) HWY_ATTR {
        storeFour((loadFour(left + begin) + h.wet * harmonics.left) / h.total, left + begin);
        storeFour((loadFour(right + begin) + h.wet * harmonics.right) / h.total, right + begin);
    };
    SectionPair pair(h.lowPass, sections.lowPass, h.highPass, sections.highPass);
    // The slot of this tile is that of the one which the high-pass is at.
    const auto after = [](std::uint32_t slot) { return slot + 1 < lagTiles ? slot + 1 : 0; };
    std::uint32_t slot = 0;
    for (std::uint32_t tile = lagTiles; tile < tiles; ++tile) {
        // Not the newest, which is not there yet: the machine would fill with what waits for it.
        shape(bass[after(slot)], h.drive, shaped[after(slot)]);
        for (std::uint32_t i = 0; i < BassTile::frames; i += 4) {
            const std::uint32_t begin = tile * BassTile::frames + i;
            FourFrames harmonics;
            for (std::uint32_t k = 0; k < 4; ++k)
                harmonics.frame[k] = loadFrame(shaped[slot].samples + 2 * (i + k));
            const FourFrames out =
                FourFrames::of(loadFour(left + begin), loadFour(right + begin), harmonics)
                    .through(pair);
            for (std::uint32_t k = 0; k < 4; ++k)
                storeFrame(out.frame[k], bass[slot].samples + 2 * (i + k));
            mix(begin - lagTiles * BassTile::frames, out.second());
        }
        slot = after(slot);
    }
    pair.save(sections.lowPass, sections.highPass);

    for (std::uint32_t i = after(slot); i != slot; i = after(i))
        shape(bass[i], h.drive, shaped[i]);
    for (std::uint32_t tile = tiles - lagTiles; tile < tiles; ++tile) {
        for (std::uint32_t i = 0; i < BassTile::frames; i += 4) {
            FourFrames out;
            for (std::uint32_t k = 0; k < 4; ++k) {
                const float *const samples = shaped[slot].samples + 2 * (i + k);
                out.frame[k] = FourFloats{sections.highPass.left.process(h.highPass, samples[0]),
                                          sections.highPass.right.process(h.highPass, samples[1])};
            }
            mix(tile * BassTile::frames + i, out.first());
        }
        slot = after(slot);
    }
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(addBassHarmonicsInLanes);

void addBassHarmonics(const BassHarmonics &harmonics, BassSections &sections, float *left,
                      float *right, std::uint32_t frames) noexcept {
    std::uint32_t tiled = frames - frames % BassTile::frames;
    if (tiled < lagTiles * BassTile::frames)
        tiled = 0;
    if (tiled > 0)
        HWY_DYNAMIC_DISPATCH(addBassHarmonicsInLanes)(harmonics, sections, left, right, tiled);
    addBassHarmonicsPlainly(harmonics, sections, left + tiled, right + tiled, frames - tiled);
}

void addBassHarmonicsPlainly(const BassHarmonics &h, BassSections &sections, float *left,
                             float *right, std::uint32_t frames) noexcept {
    const auto process = [&](float *samples, std::uint32_t count, BiquadState &lowPass,
                             BiquadState &highPass) {
        BassTile bass;
        for (std::uint32_t i = 0; i < count; ++i)
            bass.samples[i] = lowPass.process(h.lowPass, samples[i]);
        shapeByTanh(bass.samples, count, h.drive);
        for (std::uint32_t i = 0; i < count; ++i)
            samples[i] =
                (samples[i] + h.wet * highPass.process(h.highPass, bass.samples[i])) / h.total;
    };
    for (std::uint32_t begin = 0; begin < frames; begin += BassTile::frames) {
        const std::uint32_t count = std::min(BassTile::frames, frames - begin);
        process(left + begin, count, sections.lowPass.left, sections.highPass.left);
        process(right + begin, count, sections.lowPass.right, sections.highPass.right);
    }
}

} // namespace quorbel
#endif
