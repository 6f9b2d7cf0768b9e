#pragma once

#include "equalizer/EqualizerBandSettings.h"
#include "equalizer/ParametricEqualizer.h"
#include "platform/graph/GraphNode.h"

#include <span>

#include <cstddef>

namespace quorbel {

/// Stereo equaliser with a fixed number of bands in series and a global gain. Every change glides;
/// a band that is bypassed or at 0 dB (parametric, shelves) costs nothing and is bit-exact.
///
/// Setters [main], while rendering or not; settings made before the first block apply from its
/// first frame.
class ParametricEqualizerNode final : public GraphNode {
  public:
    explicit ParametricEqualizerNode(std::size_t bandCount) : equalizer_(bandCount) {}

    [[nodiscard]] std::size_t bandCount() const { return equalizer_.bandCount(); }
    [[nodiscard]] EqualizerBandSettings band(std::size_t index) const {
        return equalizer_.band(index);
    }
    /// Sets the first bands and the gain together.
    void set(std::span<const EqualizerBandSettings> bands, float globalGainDB) {
        equalizer_.set(bands, globalGainDB);
    }
    void setBand(std::size_t index, const EqualizerBandSettings &settings) {
        equalizer_.setBand(index, settings);
    }
    [[nodiscard]] float globalGainDB() const { return equalizer_.globalGainDB(); }
    void setGlobalGainDB(float gainDB) { equalizer_.setGlobalGainDB(gainDB); }

    /// Returns -EINVAL for anything but two channels at 8000 to 384000 Hz.
    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    void reset() override { equalizer_.reset(); }
    void takeSettings() noexcept override { equalizer_.takeSettings(); }
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;
    /// 1 if the next stage is another equaliser.
    [[nodiscard]] std::size_t joinable(std::span<GraphNode *const> following) const override;
    bool renderJoined(std::span<GraphNode *const> joined, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

  private:
    ParametricEqualizer equalizer_;
};

} // namespace quorbel
