#pragma once

#include "engine/TruePeak.h"
#include "platform/graph/GraphNode.h"

#include <atomic>

namespace quorbel {

/// Pass-through stage that holds the highest peak until it is cleared.
class OutputPeak final : public GraphNode {
  public:
    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;

    /// Sample peak and true peak; full scale 1. [any]
    [[nodiscard]] float sample() const { return isCleared() ? 0.0F : sample_.load(order); }
    [[nodiscard]] float between() const { return isCleared() ? 0.0F : between_.load(order); }

    /// Clears the peaks; readers see 0 at once. [main]
    void clear() { clearing_.store(true, order); }

  private:
    static constexpr auto order = std::memory_order_relaxed;
    [[nodiscard]] bool isCleared() const { return clearing_.load(order); }

    TruePeak truePeak_;
    std::atomic<float> sample_ = 0.0F;
    std::atomic<float> between_ = 0.0F;
    std::atomic<bool> clearing_ = false; ///< until the next block
};

} // namespace quorbel
