#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/RenderTime.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"

#include <span>

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// One stage of the graph. A stage works in place: the buffers hold its input, then its output. A
/// source receives undefined samples and fills the buffers.
///
/// Life cycle: constructed, allocated for a format, rendered any number of times, deallocated;
/// possibly allocated again for another format. `reset` and both allocation calls come only while
/// nothing renders.
class GraphNode {
  public:
    virtual ~GraphNode() = default;
    GraphNode(const GraphNode &) = delete;
    GraphNode &operator=(const GraphNode &) = delete;

    /// True for a node without input: the first stage of a graph.
    [[nodiscard]] virtual bool isSource() const { return false; }

    /// Allocates all memory for rendering blocks of 1 to `maximumFrames` frames in `format`. [main]
    virtual Status allocateRenderResources(const StreamFormat &format,
                                           std::uint32_t maximumFrames) = 0;
    virtual void deallocateRenderResources() {}

    /// Clears the sound (delay lines, filter states) but not the parameters: the next block starts
    /// from silence.
    virtual void reset() {}

    /// Applies settings changed since the last call to the following blocks. All stages of a plan
    /// do so together, before a block or after allocation. [render]
    virtual void takeSettings() noexcept {}

    /// Renders one block. Leaves the buffers unchanged on a status other than 0. [render]
    virtual Status render(const RenderTime &time, AudioBufferList &buffers,
                          std::uint32_t frames) noexcept = 0;

    /// Returns the number of stages at the head of `following` that `renderJoined` can include.
    /// Called once per plan. [main]
    [[nodiscard]] virtual std::size_t joinable(std::span<GraphNode *const> /*following*/) const {
        return 0;
    }

    /// Renders this stage and `joined`, the stages counted by `joinable`, in one pass; returns
    /// false without rendering if it cannot. [render]
    virtual bool renderJoined(std::span<GraphNode *const> /*joined*/, AudioBufferList & /*buffers*/,
                              std::uint32_t /*frames*/) noexcept {
        return false;
    }

  protected:
    GraphNode() = default;
};

} // namespace quorbel
