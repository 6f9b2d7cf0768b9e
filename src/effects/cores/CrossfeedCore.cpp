#include "effects/cores/CrossfeedCore.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

namespace {

/// Even, so that the alternating offset begins every chunk alike.
constexpr std::uint32_t crossfeedChunkFrames = 128;

/// The amount's ramp over a block, and its effect on a channel; for one frame or four.
class CrossingMix {
  public:
    CrossingMix(float previous, float target, std::uint32_t frames) noexcept
        : from_(frames > 1 ? previous : target), step_(target - from_),
          last_(frames > 1 ? static_cast<float>(frames - 1) : 1.0F) {}

    template <typename Samples> [[nodiscard]] Samples amount(Samples frame) const noexcept {
        return from_ + step_ * frame / last_;
    }

    /// `crossing` is the other channel's part.
    template <typename Samples>
    [[nodiscard]] static Samples mixed(Samples own, Samples crossing, Samples amount) noexcept {
        const Samples share = (amount < 1.0F ? amount : Samples{} + 1.0F) * 0.5F;
        return amount > 0.0F ? crossing * share + own * (1.0F - share) : own;
    }

  private:
    float from_;
    float step_;
    float last_;
};

} // namespace

CrossfeedCore::CrossfeedCore() { prepare(48'000.0F); }

void CrossfeedCore::prepare(float sampleRate) {
    constexpr float delaySeconds = 0.00033F;
    constexpr std::size_t lineLength = 32;
    delay_ = static_cast<std::size_t>(std::max(std::lround(sampleRate * delaySeconds), 1L));
    // At 96 kHz the delay equals the line's length, which reads the newest frame: undelayed, by
    // definition of the effect. Longer delays get a longer line.
    if (delay_ == lineLength)
        delay_ = 0;
    delayL_.assign(delay_ + crossfeedChunkFrames, 0.0F);
    delayR_.assign(delay_ + crossfeedChunkFrames, 0.0F);

    const float w0 = 4398.2295F / sampleRate; // 2π · 700 Hz
    lowPass_ = lowPass(w0, std::sin(w0) / 1.414F);
    clear();
}

void CrossfeedCore::clear() noexcept {
    std::fill(delayL_.begin(), delayL_.end(), 0.0F);
    std::fill(delayR_.begin(), delayR_.end(), 0.0F);
    crossing_ = {};
}

void CrossfeedCore::process(float *left, float *right, std::uint32_t frames, float previous,
                            float target) noexcept {
    constexpr float tiny = 1e-20F; // alternates, and so keeps the filters out of denormal numbers
    const CrossingMix mix(previous, target, frames);
    for (std::uint32_t begin = 0; begin < frames; begin += crossfeedChunkFrames) {
        const std::uint32_t count = std::min(crossfeedChunkFrames, frames - begin);
        const std::uint32_t fours = count - count % 4;
        append(left + begin, right + begin, count);
        float *const l = left + begin;
        float *const r = right + begin;

        // The filters are latency-bound; small pieces let the other work fill the gaps.
        const StereoSection none;
        StereoSection unused;
        SectionPair sections(lowPass_, crossing_, {}, none);
        const FourFloats offset{tiny, -tiny, tiny, -tiny};
        for (std::uint32_t i = 0; i < fours; i += 4) {
            const FourFrames::Channels crossing =
                FourFrames::of(loadFour(delayL_.data() + i) + offset,
                               loadFour(delayR_.data() + i) + offset, {})
                    .through(sections)
                    .first();
            const auto frame = static_cast<float>(begin + i);
            const FourFloats amount =
                mix.amount(FourFloats{frame, frame + 1.0F, frame + 2.0F, frame + 3.0F});
            storeFour(CrossingMix::mixed(loadFour(l + i), crossing.right, amount), l + i);
            storeFour(CrossingMix::mixed(loadFour(r + i), crossing.left, amount), r + i);
        }
        sections.save(crossing_, unused);

        for (std::uint32_t i = fours; i < count; ++i) {
            const float sign = i % 2 == 0 ? tiny : -tiny;
            const float lpL = crossing_.left.process(lowPass_, delayL_[i] + sign);
            const float lpR = crossing_.right.process(lowPass_, delayR_[i] + sign);
            const float amount = mix.amount(static_cast<float>(begin + i));
            l[i] = CrossingMix::mixed(l[i], lpR, amount);
            r[i] = CrossingMix::mixed(r[i], lpL, amount);
        }
        advance(count);
    }
}

void CrossfeedCore::append(const float *left, const float *right, std::uint32_t frames) noexcept {
    const auto held = static_cast<std::ptrdiff_t>(delay_);
    std::copy_n(left, frames, delayL_.begin() + held);
    std::copy_n(right, frames, delayR_.begin() + held);
}

void CrossfeedCore::advance(std::uint32_t frames) noexcept {
    std::copy_n(delayL_.begin() + frames, delay_, delayL_.begin());
    std::copy_n(delayR_.begin() + frames, delay_, delayR_.begin());
}

} // namespace quorbel
