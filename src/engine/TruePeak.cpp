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

/// The first two phases of the interpolator of BS.1770-4, annex 2; the other two are the second and
/// the first, backwards.
constexpr std::size_t tapCount = TruePeak::tapCount;
constexpr float truePeakTaps[2][tapCount] = {
    {0.0017089843750F, 0.0109863281250F, -0.0196533203125F, 0.0332031250000F, -0.0594482421875F,
     0.1373291015625F, 0.9721679687500F, -0.1022949218750F, 0.0476074218750F, -0.0266113281250F,
     0.0148925781250F, -0.0083007812500F},
    {-0.0291748046875F, 0.0292968750000F, -0.0517578125000F, 0.0891113281250F, -0.1665039062500F,
     0.4650878906250F, 0.7797851562500F, -0.2003173828125F, 0.1015625000000F, -0.0582275390625F,
     0.0330810546875F, -0.0189208984375F},
};

/// No interpolated value is larger than this multiple of the samples: the sum of the magnitudes of
/// a phase's taps.
constexpr float largestOvershoot = 2.03F;

/// The largest magnitude of the four phases at as many frames as `tag` has lanes. A phase f and its
/// mirror image b are computed as (f + b) / 2 and (f - b) / 2, each from half the taps;
/// max(|f|, |b|) is the sum of their magnitudes.
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

/// The largest magnitude `at` finds in `count` frames: `at(tag, i)` is that of the frames from i
/// on.
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

void raiseToTile(TruePeak::Memory &memory, const float *tile, std::uint32_t count, Peaks &held) {
    constexpr std::size_t before = tapCount - 1;
    auto &samples = memory.samples;
    std::copy_n(tile, count, samples.begin() + before);
    const float largestSample = largest(
        count, [&](auto tag, std::uint32_t i) { return hn::Abs(hn::LoadU(tag, tile + i)); });
    held.sample = std::max(held.sample, largestSample);
    held.between = std::max(held.between, largestSample);
    if (std::max(largestSample, memory.largestBefore) * largestOvershoot > held.between)
        held.between = std::max(held.between, largest(count, [&](auto tag, std::uint32_t i) {
                                    return peakAt(tag, samples.data() + i);
                                }));
    std::copy_n(samples.begin() + count, before, samples.begin());
    // A short tile leaves some of the samples before it in reach.
    memory.largestBefore =
        count >= before ? largestSample : std::max(largestSample, memory.largestBefore);
}

} // namespace

void raiseToPeaks(std::array<TruePeak::Memory, 2> &memories,
                  const std::array<const float *, 2> &channels, std::uint32_t frames, Peaks &held) {
    for (std::uint32_t begin = 0; begin < frames; begin += TruePeak::tileFrames)
        for (std::size_t channel = 0; channel < channels.size(); ++channel)
            raiseToTile(memories[channel], channels[channel] + begin,
                        std::min(TruePeak::tileFrames, frames - begin), held);
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
