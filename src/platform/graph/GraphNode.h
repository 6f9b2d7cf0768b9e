#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/RenderTime.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"

#include <span>

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// One stage of the graph. A stage works in place: it finds its input in the buffers and leaves its
/// output there (a source finds rubbish and fills them).
///
/// Life: constructed, allocated for a format, rendered any number of times, deallocated; allocated
/// again for another format. `reset` and both allocation calls come only while nothing renders.
class GraphNode {
  public:
    virtual ~GraphNode() = default;
    GraphNode(const GraphNode &) = delete;
    GraphNode &operator=(const GraphNode &) = delete;

    /// True for a node that makes sound and takes none: the first stage of a graph.
    [[nodiscard]] virtual bool isSource() const { return false; }

    /// Takes all the memory that rendering blocks of 1 to `maximumFrames` frames in `format` needs.
    /// [main]
    virtual Status allocateRenderResources(const StreamFormat &format,
                                           std::uint32_t maximumFrames) = 0;
    virtual void deallocateRenderResources() {}

    /// Forgets sound (delay lines, filter memories), not parameters: the next block starts from
    /// silence.
    virtual void reset() {}

    /// Takes the settings made since the last call; blocks are rendered with the settings taken
    /// last. All stages of a plan take theirs together, before a block or after allocation.
    /// [render]
    virtual void takeSettings() noexcept {}

    /// Renders one block. A status other than 0 leaves the buffers as the stage found them.
    /// [render]
    virtual Status render(const RenderTime &time, AudioBufferList &buffers,
                          std::uint32_t frames) noexcept = 0;

    /// Returns how many of the stages behind this one, `following`, `renderJoined` takes. Asked
    /// once per plan. [main]
    [[nodiscard]] virtual std::size_t joinable(std::span<GraphNode *const> /*following*/) const {
        return 0;
    }

    /// Renders this stage and `joined`, the stages that `joinable` has counted, in one pass; or
    /// does nothing and returns false. [render]
    virtual bool renderJoined(std::span<GraphNode *const> /*joined*/, AudioBufferList & /*buffers*/,
                              std::uint32_t /*frames*/) noexcept {
        return false;
    }

  protected:
    GraphNode() = default;
};

} // namespace quorbel
