#pragma once

#include "platform/graph/GraphNode.h"
#include "reverb/Reverb.h"

namespace quorbel {

/// Stereo reverb with a set of factory rooms. Mix and room glide; a mix of 0 costs nothing and is
/// bit-exact.
///
/// Setters [main], while rendering or not; settings made before the first block apply from its
/// first frame.
class ReverbNode final : public GraphNode {
  public:
    [[nodiscard]] RoomModel factoryPreset() const { return reverb_.roomModel(); }
    /// Loads a room and keeps the mix. Loading the current room changes nothing.
    void loadFactoryPreset(RoomModel model) { reverb_.setRoomModel(model); }

    /// Percent, 0 (direct sound alone) to 100 (room alone).
    [[nodiscard]] float wetDryMix() const { return reverb_.mixPercent(); }
    /// Clamped to that range; NaN is 0.
    void setWetDryMix(float percent) { reverb_.setMixPercent(percent); }

    /// Returns -EINVAL for anything but two channels at 8000 to 384000 Hz.
    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    void reset() override { reverb_.reset(); }
    void takeSettings() noexcept override { reverb_.takeSettings(); }
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;

  private:
    Reverb reverb_;
};

} // namespace quorbel
