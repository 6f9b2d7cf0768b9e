#include "engine/TruePeak.h"

#include "platform/dsp/VectorTargets.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/TruePeak.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/// First two phases of the interpolator of BS.1770-4, annex 2; the other two are the second and the
/// first, reversed.
constexpr std::size_t tapCount = TruePeak::tapCount;
constexpr float truePeakTaps[2][tapCount] = {
    {0.0017089843750F, 0.0109863281250F, -0.0196533203125F, 0.0332031250000F, -0.0594482421875F,
     0.1373291015625F, 0.9721679687500F, -0.1022949218750F, 0.0476074218750F, -0.0266113281250F,
     0.0148925781250F, -0.0083007812500F},
    {-0.0291748046875F, 0.0292968750000F, -0.0517578125000F, 0.0891113281250F, -0.1665039062500F,
     0.4650878906250F, 0.7797851562500F, -0.2003173828125F, 0.1015625000000F, -0.0582275390625F,
     0.0330810546875F, -0.0189208984375F},
};

/// Bounds of an interpolated value f of a phase with taps t, for samples of at most s and second
/// differences of at most d in magnitude. In general, |f| <= sum |t| * s. The bound for smooth
/// sound splits f into a * x[5] + b * x[6], with the taps' sum and first moment, and a rest sum
/// g[k] * d[k], where g is the double running sum of the rest's taps. So |f| <= (a + b) * s + sum
/// |g| * d, with a + b = 1.0016 and 0.9730, sum |g| = 0.1642 and 0.5697. The constants are rounded
/// up by far more than the rounding errors of the sums.
constexpr float largestOvershoot = 2.03F;
constexpr float smoothOvershoot = 1.002F;
constexpr float bendOvershoot = 0.571F;

HWY_INLINE TruePeak::Extent larger(const TruePeak::Extent &a, const TruePeak::Extent &b) {
    return {.sample = std::max(a.sample, b.sample), .bend = std::max(a.bend, b.bend)};
}

HWY_INLINE float limitOf(const TruePeak::Extent &extent) {
    return std::min(largestOvershoot * extent.sample,
                    smoothOvershoot * extent.sample + bendOvershoot * extent.bend);
}

/// Largest magnitude of the four phases, for as many frames as `tag` has lanes. A phase f and its
/// mirror image b are computed as (f + b) / 2 and (f - b) / 2, each from half the taps; max(|f|,
/// |b|) is the sum of their magnitudes.
template <typename Tag> HWY_INLINE hn::Vec<Tag> peakAt(Tag tag, const float *samples) {
    constexpr std::size_t last = tapCount - 1;
    hn::Vec<Tag> even[2] = {hn::Zero(tag), hn::Zero(tag)};
    hn::Vec<Tag> odd[2] = {hn::Zero(tag), hn::Zero(tag)};
    for (std::size_t tap = 0; tap < tapCount / 2; ++tap) {
        const auto newer = hn::LoadU(tag, samples + last - tap);
        const auto older = hn::LoadU(tag, samples + tap);
        const auto sum = hn::Add(newer, older);
        const auto difference = hn::Sub(newer, older);
        for (std::size_t phase = 0; phase < 2; ++phase) {
            const float *taps = truePeakTaps[phase];
            even[phase] =
                hn::MulAdd(hn::Set(tag, 0.5F * (taps[tap] + taps[last - tap])), sum, even[phase]);
            odd[phase] = hn::MulAdd(hn::Set(tag, 0.5F * (taps[tap] - taps[last - tap])), difference,
                                    odd[phase]);
        }
    }
    return hn::Max(hn::Add(hn::Abs(even[0]), hn::Abs(odd[0])),
                   hn::Add(hn::Abs(even[1]), hn::Abs(odd[1])));
}

/// Largest of the magnitudes `at(tag, i)` of the frames from i on, over `count` frames.
template <typename At> HWY_INLINE float largest(std::uint32_t count, const At &at) {
    const hn::CappedTag<float, 16> tag;
    const hn::CappedTag<float, 1> single;
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    auto peaks = hn::Zero(tag);
    std::uint32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        peaks = hn::Max(peaks, at(tag, i));
    float peak = hn::GetLane(hn::MaxOfLanes(tag, peaks));
    for (; i < count; ++i)
        peak = std::max(peak, hn::GetLane(at(single, i)));
    return peak;
}

template <typename Tag> HWY_INLINE hn::Vec<Tag> bendAt(Tag tag, const float *samples) {
    const auto middle = hn::LoadU(tag, samples - 1);
    const auto after = hn::Sub(hn::LoadU(tag, samples), middle);
    const auto before = hn::Sub(middle, hn::LoadU(tag, samples - 2));
    return hn::Abs(hn::Sub(after, before));
}

/// `at(i)` points to sample i of the tile, preceded by the samples in the taps' reach; `before` is
/// their extent.
template <typename At>
HWY_INLINE void raiseToTile(const At &at, std::uint32_t count, TruePeak::Extent &before,
                            Peaks &held) {
    const TruePeak::Extent extent{
        .sample = largest(
            count, [&](auto tag, std::uint32_t i) { return hn::Abs(hn::LoadU(tag, at(i))); }),
        .bend = largest(count, [&](auto tag, std::uint32_t i) { return bendAt(tag, at(i)); })};
    held.sample = std::max(held.sample, extent.sample);
    held.between = std::max(held.between, extent.sample);
    const TruePeak::Extent reached = larger(extent, before);
    if (limitOf(reached) > held.between)
        held.between = std::max(held.between, largest(count, [&](auto tag, std::uint32_t i) {
                                    return peakAt(tag, at(i) - (tapCount - 1));
                                }));
    // A tile shorter than the taps leaves earlier samples in reach.
    before = count >= tapCount - 1 ? extent : reached;
}

void raiseToChannel(TruePeak::Memory &memory, const float *channel, std::uint32_t frames,
                    Peaks &held) {
    constexpr std::uint32_t kept = tapCount - 1;
    constexpr std::uint32_t tileFrames = 64;
    constexpr std::uint32_t headFrames = TruePeak::headFrames;
    auto &samples = memory.samples;
    float *const head = samples.data() + kept;
    if (frames < headFrames) {
        std::copy_n(channel, frames, head);
        raiseToTile([&](std::uint32_t i) { return head + i; }, frames, memory.extentBefore, held);
        std::copy_n(samples.begin() + frames, kept, samples.begin());
        return;
    }
    std::copy_n(channel, headFrames, head);
    std::uint32_t done = std::min(tileFrames, frames);
    raiseToTile([&](std::uint32_t i) { return i < headFrames ? head + i : channel + i; }, done,
                memory.extentBefore, held);
    for (; done < frames; done += std::min(tileFrames, frames - done)) {
        const float *const tile = channel + done;
        raiseToTile([&](std::uint32_t i) { return tile + i; }, std::min(tileFrames, frames - done),
                    memory.extentBefore, held);
    }
    std::copy_n(channel + frames - kept, kept, samples.begin());
}

} // namespace

void raiseToPeaks(std::array<TruePeak::Memory, 2> &memories,
                  const std::array<const float *, 2> &channels, std::uint32_t frames, Peaks &held) {
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        raiseToChannel(memories[channel], channels[channel], frames, held);
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(raiseToPeaks);

void TruePeak::measure(const std::array<const float *, 2> &channels, std::uint32_t frames,
                       Peaks &held) noexcept {
    HWY_DYNAMIC_DISPATCH(raiseToPeaks)(memories_, channels, frames, held);
}

} // namespace quorbel
#endif
