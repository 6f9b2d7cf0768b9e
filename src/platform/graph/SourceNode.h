#pragma once

#include "platform/graph/GraphNode.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace quorbel {

/// The first stage: a function fills each block. Replaces non-finite samples before any later stage
/// sees them.
class SourceNode final : public GraphNode {
  public:
    /// Fills `frames` frames of all buffers; a status other than 0 makes the block silent. [render]
    using RenderCallback =
        std::function<Status(const AudioBufferList &buffers, std::uint32_t frames)>;

    SourceNode(const StreamFormat &format, RenderCallback callback);

    /// Number of frames in which a non-finite or too large sample was replaced by zero. [any]
    [[nodiscard]] std::uint64_t replacedNonFiniteFrames() const noexcept {
        return replacedFrames_.load(std::memory_order_relaxed);
    }

    [[nodiscard]] bool isSource() const override { return true; }
    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;

  private:
    const StreamFormat format_;
    const RenderCallback callback_;
    std::atomic<std::uint64_t> replacedFrames_{0};
};

} // namespace quorbel
