#pragma once

#include "effects/cores/CrossfeedCore.h"
#include "effects/cores/LinearRamp.h"

#include <algorithm>
#include <cstdint>

namespace quorbel {

/// Processes one block of a crossfeed in place and in pieces, so that other recursions can overlap
/// its own. Call `finish` last. [render]
class CrossfeedBlock {
  public:
    /// See CrossfeedCore::process.
    [[gnu::always_inline]] CrossfeedBlock(CrossfeedCore &core, float *left, float *right,
                                          std::uint32_t frames, float previous,
                                          float target) noexcept
        : core_(core), left_(left), right_(right), frames_(frames), ramp_(previous, target, frames),
          sections_(core.lowPass_, core.crossing_, {}, StereoSection()) {}

    /// Processes the next `count` frames, a multiple of 4 within the same chunk. Calls
    /// `meanwhile(i)` after each, with i from 0.
    template <typename Meanwhile>
    [[gnu::always_inline]] void run(std::uint32_t count, const Meanwhile &meanwhile) noexcept {
        const std::uint32_t inChunk = enterChunk();
        const float *const delayedL = core_.delayL_.data() + inChunk;
        const float *const delayedR = core_.delayR_.data() + inChunk;
        float *const l = left_ + position_;
        float *const r = right_ + position_;
        SectionPair sections = sections_;
        FourFloats amount = FourFloats{} + ramp_.from();
        const FourFloats offset{tiny, -tiny, tiny, -tiny};
        // The filters are latency-bound; small pieces let the other work fill the gaps.
        for (std::uint32_t i = 0; i < count; i += 4) {
            FourFrames frames = FourFrames::of(loadFour(delayedL + i) + offset,
                                               loadFour(delayedR + i) + offset, {});
            for (std::uint32_t k = 0; k < 4; ++k) {
                frames.frame[k] = sections.process(frames.frame[k]);
                meanwhile(i + k);
            }
            const FourFrames::Channels crossing = frames.first();
            if (ramp_.step() != 0.0F) {
                const auto frame = static_cast<float>(position_ + i);
                amount = amountAt(FourFloats{frame, frame + 1.0F, frame + 2.0F, frame + 3.0F});
            }
            storeFour(mixed(loadFour(l + i), crossing.right, amount), l + i);
            storeFour(mixed(loadFour(r + i), crossing.left, amount), r + i);
        }
        sections_ = sections;
        position_ += count;
    }

    /// Processes the rest of the block and keeps the state for the next one.
    void finish() noexcept {
        while (position_ < frames_) {
            const std::uint32_t count =
                std::min(chunkFrames - position_ % chunkFrames, frames_ - position_);
            if (count < 4)
                break;
            run(count - count % 4, [](std::uint32_t) {});
        }
        StereoSection unused;
        sections_.save(core_.crossing_, unused);
        while (position_ < frames_)
            runSingle();
        if (frames_ > 0)
            core_.advance((frames_ - 1) % chunkFrames + 1);
    }

  private:
    static constexpr std::uint32_t chunkFrames = CrossfeedCore::chunkFrames;
    static constexpr float tiny = 1e-20F; // alternating offset against denormals in the filters

    /// Appends the next chunk to the delay lines at its first frame. Returns the next frame's index
    /// in its chunk.
    [[gnu::always_inline]] std::uint32_t enterChunk() noexcept {
        const std::uint32_t inChunk = position_ % chunkFrames;
        if (inChunk == 0) {
            if (position_ > 0)
                core_.advance(chunkFrames);
            core_.append(left_ + position_, right_ + position_,
                         std::min(chunkFrames, frames_ - position_));
        }
        return inChunk;
    }

    void runSingle() noexcept {
        const std::uint32_t i = enterChunk();
        const float sign = i % 2 == 0 ? tiny : -tiny;
        const float lpL = core_.crossing_.left.process(core_.lowPass_, core_.delayL_[i] + sign);
        const float lpR = core_.crossing_.right.process(core_.lowPass_, core_.delayR_[i] + sign);
        const float amount = amountAt(static_cast<float>(position_));
        left_[position_] = mixed(left_[position_], lpR, amount);
        right_[position_] = mixed(right_[position_], lpL, amount);
        ++position_;
    }

    // For one frame or four.
    template <typename Samples>
    [[gnu::always_inline]] [[nodiscard]] Samples amountAt(Samples frame) const noexcept {
        return ramp_.from() + ramp_.step() * frame / ramp_.last();
    }
    /// `crossing` is the filtered other channel.
    template <typename Samples>
    [[gnu::always_inline]] [[nodiscard]] static Samples mixed(Samples own, Samples crossing,
                                                              Samples amount) noexcept {
        const Samples share = (amount < 1.0F ? amount : Samples{} + 1.0F) * 0.5F;
        return amount > 0.0F ? crossing * share + own * (1.0F - share) : own;
    }

    CrossfeedCore &core_;
    float *const left_;
    float *const right_;
    const std::uint32_t frames_;
    const LinearRamp ramp_; ///< of the amount
    SectionPair sections_;  ///< the crossing sections in the first two lanes
    std::uint32_t position_ = 0;
};

} // namespace quorbel
