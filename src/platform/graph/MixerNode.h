#pragma once

#include "platform/core/PCMBuffer.h"
#include "platform/dsp/SampleRateConverter.h"
#include "platform/graph/Fade.h"
#include "platform/graph/GraphNode.h"
#include "platform/graph/NodeTap.h"
#include "platform/graph/RenderPlan.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace quorbel {

/// The last stage: fills the output's buffers from a plan, converting from the graph's rate to the
/// output's and from stereo to the output's channels.
///
/// Asks the plan for exactly the frames that the converter needs, so no frames accumulate between
/// the two rates. Equal rates are bit-exact.
class MixerNode final : public GraphNode {
  public:
    MixerNode() = default;

    /// Prepares the graph's side; the format must be stereo.
    Status allocateRenderResources(const StreamFormat &format,
                                   std::uint32_t maximumFrames) override;
    void deallocateRenderResources() override;

    /// Prepares the output's side for the following pulls; never concurrent with one. Returns
    /// `statusFormatNotSupported` and outputs silence for unsupported rates. [control]
    Status setOutputFormat(const StreamFormat &format);

    /// Format of the mixer's output: stereo at the output's rate; invalid until that is known.
    /// [any]
    [[nodiscard]] StreamFormat outputFormat() const noexcept;

    /// Fills any number of frames of `output` from the plan, then hands them to the tap. Returns
    /// the plan's status. [render]
    Status pull(RenderPlan &plan, NodeTap &tap, const AudioBufferList &output,
                std::uint32_t frames) noexcept;

    /// Fade-in and fade-out of the output.
    [[nodiscard]] Fade &fade() { return fade_; }

    /// Applies the fade to a stereo block at the output's rate. [render]
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override;

    /// Clears the converter; only while nothing pulls.
    void reset() override;

  private:
    Status convert(RenderPlan &plan, const AudioBufferList &output, std::uint32_t frames) noexcept;
    Status makeConverter();

    double graphRate_ = 0.0;
    std::atomic<double> outputRate_{0.0};
    bool convertible_ = false;
    std::unique_ptr<SampleRateConverter> converter_; // only for different rates
    std::uint32_t longestPull_ = maximumBlockFrames; // keeps the plan's blocks within their maximum
    std::optional<PCMBuffer> graphBlock_;            // input of the converter
    std::optional<PCMBuffer> stereoBlock_;           // for outputs that are not stereo
    RenderTime time_;
    Fade fade_;
};

} // namespace quorbel
