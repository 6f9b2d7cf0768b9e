#pragma once

#include <zita-resampler/resampler.h>
#include <zita-resampler/vresampler.h>

#include <cstdint>

namespace quorbel {

/// One zita-resampler over interleaved frames, with exact frame counts.
///
/// Output frame m needs the input frames up to and including floor(m · source / target), counted
/// from `reset`; the filter starts filled with silence.
class ResamplerStage {
  public:
    /// Only the ratio target/source matters, from 1/16 to 256. Throws std::bad_alloc, and
    /// std::invalid_argument if zita refuses.
    ResamplerStage(std::uint64_t source, std::uint64_t target, std::uint32_t channels);

    struct Progress {
        std::uint32_t consumed = 0;
        std::uint32_t produced = 0;
    };
    /// A null `input` is silence, which costs next to nothing once it fills the filter.
    Progress process(const float *input, std::uint32_t inputFrames, float *output,
                     std::uint32_t outputFrames) noexcept;

    [[nodiscard]] std::uint64_t inputFramesFor(std::uint64_t outputFrames) const noexcept;

    /// Half the filter length, in source frames.
    [[nodiscard]] double latencyFrames() const noexcept { return latencyFrames_; }

    void reset() noexcept;

  private:
    template <typename Engine>
    Progress run(Engine &engine, const float *input, std::uint32_t inputFrames, float *output,
                 std::uint32_t outputFrames) noexcept;
    template <typename Engine> void fillWithSilence(Engine &engine) noexcept;

    std::uint64_t source_; // reduced to lowest terms
    std::uint64_t target_;
    bool tabulated_ = true; // one filter per output phase; otherwise filters are interpolated
    Resampler exact_;
    VResampler interpolated_;
    double latencyFrames_ = 0.0;
    // Frames since the last output frame that coincided with an input frame; a period has `target_`
    // outputs and `source_` inputs.
    std::uint64_t producedInPeriod_ = 0;
    std::int64_t consumedInPeriod_ = 0; // negative until that input frame arrives
};

} // namespace quorbel
