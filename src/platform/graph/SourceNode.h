#pragma once

#include "platform/graph/GraphNode.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace quorbel {

/// Where a graph's sound comes from: a function that fills each block. What it delivers is freed of
/// non-finite samples here, so that no stage downstream ever sees one.
class SourceNode final : public GraphNode {
  public:
    /// Fills `frames` frames of all buffers; a status other than 0 makes the block silent. [render]
    using RenderCallback =
        std::function<Status(const AudioBufferList &buffers, std::uint32_t frames)>;

    SourceNode(const StreamFormat &format, RenderCallback callback);

    /// Frames so far in which a sample was not finite (or absurdly large) and was replaced by zero.
    /// [any]
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
