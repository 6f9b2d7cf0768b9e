#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"
#include "platform/graph/GraphNode.h"
#include "platform/graph/NodeTap.h"
#include "platform/threads/ShortLock.h"

#include <cstdint>
#include <vector>

namespace quorbel {

/// The stages of a graph up to its mixer, in order of rendering. Made by `AudioGraph::start` and
/// never edited. The nodes stay allocated during its lifetime.
class RenderPlan {
  public:
    struct Stage {
        GraphNode *node = nullptr;
        NodeTap *tap = nullptr;
    };

    /// The first of `stages` is a source; all connections have `format`. Stages keep their settings
    /// while another thread holds `settingsLock`.
    RenderPlan(std::vector<Stage> stages, const StreamFormat &format, ShortLock &settingsLock);
    ~RenderPlan();
    RenderPlan(const RenderPlan &) = delete;
    RenderPlan &operator=(const RenderPlan &) = delete;

    /// Allocates every node; deallocates all of them if one fails. [main]
    Status allocate();

    [[nodiscard]] const StreamFormat &format() const { return format_; }

    /// Clears the sound held in the stages; only while nothing renders. [control]
    void reset();

    /// Renders the next 1 to `maximumBlockFrames` frames. All stages use settings of the same time:
    /// the newest, or the previous block's while the lock is held. Returns the first status other
    /// than 0. Replaces a failing source by silence and skips other failing stages. [render]
    Status render(AudioBufferList &buffers, std::uint32_t frames) noexcept;

  private:
    void takeSettings() noexcept;
    /// Renders stage `first` and its joinable stages in one pass; returns false without rendering
    /// if it cannot.
    bool renderJoined(std::size_t first, AudioBufferList &buffers, std::uint32_t frames) noexcept;
    Status renderAlone(const Stage &stage, AudioBufferList &buffers, std::uint32_t frames) noexcept;

    std::vector<Stage> stages_;
    std::vector<GraphNode *> nodes_;    ///< the stages' nodes
    std::vector<std::size_t> joinable_; ///< per stage: following stages that join its pass
    StreamFormat format_;
    ShortLock &settingsLock_;
    std::size_t allocated_ = 0; // number of allocated stages
    RenderTime time_;           // render only
};

} // namespace quorbel
