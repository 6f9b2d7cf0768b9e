#pragma once

#include "engine/KWeighting.h"
#include "platform/graph/GraphNode.h"

#include <array>
#include <atomic>
#include <optional>
#include <vector>

namespace quorbel {

/// Measures the loudness before and after the stages between two nodes, which do not change the
/// sound: the mean power of both channels with the K weighting of ITU-R BS.1770, over about three
/// seconds.
///
/// The recursions of the weighting are latency-bound, so the first node only copies its block, and
/// the second measures both side by side.
class ChainLoudness {
  public:
    [[nodiscard]] GraphNode &before() { return before_; }
    [[nodiscard]] GraphNode &after() { return after_; }

    /// Gain in dB, within ±24, that makes the sound before the stages as loud as after them. Empty
    /// if either is below -70 dB. [any]
    [[nodiscard]] std::optional<float> matchingGainDB() const;

  private:
    class Before final : public GraphNode {
      public:
        Status allocateRenderResources(const StreamFormat &format,
                                       std::uint32_t maximumFrames) override;
        Status render(const RenderTime &time, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

        /// The block rendered last.
        [[nodiscard]] const float *channel(std::size_t index) const {
            return channels_[index].data();
        }
        [[nodiscard]] std::uint32_t frames() const { return frames_; }

      private:
        std::array<std::vector<float>, 2> channels_;
        std::uint32_t frames_ = 0;
    };

    class After final : public GraphNode {
      public:
        explicit After(const Before &before) : before_(before) {}

        Status allocateRenderResources(const StreamFormat &format,
                                       std::uint32_t maximumFrames) override;
        void reset() override;
        Status render(const RenderTime &time, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

        /// Power relative to full scale; 0 before the first sound. [any]
        [[nodiscard]] float powerBefore() const { return published_[0].load(order); }
        [[nodiscard]] float powerAfter() const { return published_[1].load(order); }

      private:
        static constexpr auto order = std::memory_order_relaxed;

        const Before &before_;
        double sampleRate_ = 48000.0;
        KWeighting weighting_{sampleRate_};
        std::uint32_t weightFrames_ = 0; ///< block length of `weight_`
        double weight_ = 0.0;            ///< weight of a block in the means
        std::array<double, 2> means_{};
        std::array<std::atomic<float>, 2> published_{};
    };

    Before before_;
    After after_{before_};
};

} // namespace quorbel
