#pragma once

#include "platform/graph/GraphNode.h"

#include <array>
#include <atomic>
#include <optional>

namespace quorbel {

/// A stage that leaves the sound as it is and knows how loud it has been lately: the mean power of
/// both channels with the K weighting of ITU-R BS.1770, over about the last three seconds.
class LoudnessNode final : public GraphNode {
  public:
    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    void reset() override;
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;

    /// Weighted power, full scale 1; 0 while nothing has been heard. [any]
    [[nodiscard]] float power() const { return power_.load(std::memory_order_relaxed); }

  private:
    /// A biquad in transposed direct form II.
    struct Section {
        double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
    };
    struct Memory {
        double s1 = 0.0, s2 = 0.0;
    };
    static Section headShelf(double sampleRate);
    static Section lowCut(double sampleRate);

    std::array<Section, 2> sections_;
    std::array<std::array<Memory, 2>, 2> memory_; ///< by channel, by section
    double sampleRate_ = 48000.0;
    double mean_ = 0.0;
    std::atomic<float> power_{0.0F};
};

/// The gain in dB that makes sound of `power` as loud as sound of `wanted` power, within ±24 dB;
/// nothing where either is too quiet to tell (below -70 dB).
[[nodiscard]] std::optional<float> matchingGainDB(float power, float wanted);

} // namespace quorbel
