#pragma once

#include "platform/graph/GraphNode.h"
#include "platform/units/AudioUnit.h"

#include <memory>
#include <string>

namespace quorbel {

/// Wraps an audio unit as a stage. The unit's input pull does nothing: the buffers hold the input.
class UnitNode final : public GraphNode {
  public:
    explicit UnitNode(std::unique_ptr<AudioUnit> unit);
    ~UnitNode() override;

    [[nodiscard]] AudioUnit &unit() { return *unit_; }
    [[nodiscard]] const AudioUnit &unit() const { return *unit_; }

    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    void deallocateRenderResources() override;
    void reset() override { unit_->reset(); }
    void takeSettings() noexcept override { unit_->takeSettings(); }
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;
    /// Counts the following units that can join this unit's pass.
    [[nodiscard]] std::size_t joinable(std::span<GraphNode *const> following) const override;
    bool renderJoined(std::span<GraphNode *const> joined, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

  private:
    static constexpr std::size_t mostJoined = 4;

    std::unique_ptr<AudioUnit> unit_;
    RenderBlock block_; // while allocated
    const PullInputBlock readyInput_;
};

} // namespace quorbel
