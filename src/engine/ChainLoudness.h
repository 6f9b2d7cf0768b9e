#pragma once

#include "engine/KWeighting.h"
#include "platform/graph/GraphNode.h"

#include <array>
#include <atomic>
#include <optional>
#include <vector>

namespace quorbel {

/// Measures the loudness before and after the stages between two pass-through nodes: the mean
/// K-weighted power (ITU-R BS.1770) of both channels over about three seconds.
///
/// The weighting is the bottleneck. Its recursions are latency-bound, so the first node only copies
/// its block, and the second measures both side by side. It measures stretches with gaps of three
/// times their length on average. Gaps of equal length would lock to the beat of some music, for
/// example at 150 beats per minute.
class ChainLoudness {
  public:
    [[nodiscard]] GraphNode &before() { return before_; }
    [[nodiscard]] GraphNode &after() { return after_; }

    /// Gain in dB, within ±24, that matches the loudness before the stages to that after them.
    /// Empty if either is below -70 dB. [any]
    [[nodiscard]] std::optional<float> matchingGainDB() const;

  private:
    class Before final : public GraphNode {
      public:
        Status allocateRenderResources(const StreamFormat &format,
                                       std::uint32_t maximumFrames) override;
        void reset() override;
        Status render(const RenderTime &time, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

        /// Last rendered block; `frames` is 0 outside of a stretch.
        [[nodiscard]] const float *channel(std::size_t index) const {
            return channels_[index].data();
        }
        [[nodiscard]] std::uint32_t frames() const { return frames_; }

      private:
        bool isInStretch(std::uint32_t frames) noexcept;

        std::array<std::vector<float>, 2> channels_;
        std::uint32_t frames_ = 0;
        double sampleRate_ = chainSampleRate;
        bool isStretch_ = false;  ///< of the current stretch or gap
        double framesLeft_ = 0.0; ///< of the current stretch or gap
        double gapPhase_ = 0.0;   ///< position of the next gap in the range of lengths, 0 to 1
    };

    class After final : public GraphNode {
      public:
        explicit After(const Before &before) : before_(before) {}

        Status allocateRenderResources(const StreamFormat &format,
                                       std::uint32_t maximumFrames) override;
        void reset() override;
        Status render(const RenderTime &time, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

        /// Power relative to full scale; 0 before the first stretch has ended. [any]
        [[nodiscard]] float powerBefore() const { return published_[0].load(order); }
        [[nodiscard]] float powerAfter() const { return published_[1].load(order); }

      private:
        static constexpr auto order = std::memory_order_relaxed;

        void beginStretch() noexcept;
        void endStretch() noexcept;

        const Before &before_;
        double sampleRate_ = chainSampleRate;
        KWeighting weighting_{sampleRate_};
        std::uint32_t settlingFrames_ = 0; ///< left until the filters settle
        KWeighting::Sums sums_{};          ///< of the stretch
        std::uint32_t summedFrames_ = 0;
        std::array<double, 2> means_{};
        std::array<std::atomic<float>, 2> published_{};
    };

    Before before_;
    After after_{before_};
};

} // namespace quorbel
