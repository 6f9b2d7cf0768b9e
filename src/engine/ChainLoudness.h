#pragma once

#include "engine/KWeighting.h"
#include "platform/graph/GraphNode.h"

#include <array>
#include <atomic>
#include <optional>
#include <vector>

namespace quorbel {

/// How loud the sound has been before and after the stages between two nodes, which leave it as it
/// is: the mean power of both channels with the K weighting of ITU-R BS.1770, over about the last
/// three seconds.
///
/// The recursions of a weighting are latency-bound. So the first node only keeps its block, and the
/// second measures both side by side.
class ChainLoudness {
  public:
    [[nodiscard]] GraphNode &before() { return before_; }
    [[nodiscard]] GraphNode &after() { return after_; }

    /// The gain that makes the sound before the stages as loud as the one after them, dB, within
    /// ±24; nothing where either is too quiet to tell (below -70 dB). [any]
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

        /// Full scale 1; 0 while nothing has been heard. [any]
        [[nodiscard]] float powerBefore() const { return published_[0].load(order); }
        [[nodiscard]] float powerAfter() const { return published_[1].load(order); }

      private:
        static constexpr auto order = std::memory_order_relaxed;

        const Before &before_;
        double sampleRate_ = 48000.0;
        KWeighting weighting_{sampleRate_};
        std::uint32_t weightFrames_ = 0; ///< what `weight_` was computed for
        double weight_ = 0.0;            ///< of a block in the means
        std::array<double, 2> means_{};
        std::array<std::atomic<float>, 2> published_{};
    };

    Before before_;
    After after_{before_};
};

} // namespace quorbel
