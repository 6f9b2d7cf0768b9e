#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>
#include <memory>

namespace quorbel {

/// Converts planar sound from one fixed rate to another. Keeps its state between blocks, so block
/// lengths do not affect the samples. The frame count is exact for any running time.
///
/// Flat within 0.01 dB up to 0.907 of half the lower rate (20 kHz at 44.1 kHz) and more than 110 dB
/// down from half the lower rate on; equal rates are copied.
class SampleRateConverter {
  public:
    /// Whole rates of 4000 to 384000 Hz; 1 to 8 channels. `maximumFrames` is the longest input or
    /// output of one `process` call. Throws std::invalid_argument for rates that cannot be
    /// converted.
    SampleRateConverter(double sourceRate, double targetRate, std::uint32_t channels,
                        std::uint32_t maximumFrames);
    ~SampleRateConverter();
    SampleRateConverter(const SampleRateConverter &) = delete;
    SampleRateConverter &operator=(const SampleRateConverter &) = delete;

    struct Progress {
        std::uint32_t consumed = 0;
        std::uint32_t produced = 0;
    };
    /// Converts until the input is consumed or the output is full. A missing input channel is
    /// silent, a missing output channel is left out. Allocates nothing. [any one thread]
    Progress process(const AudioBufferList &input, std::uint32_t inputFrames,
                     const AudioBufferList &output, std::uint32_t outputFrames) noexcept;

    /// Number of input frames that the next `outputFrames` frames need and consume.
    [[nodiscard]] std::uint64_t inputFramesFor(std::uint64_t outputFrames) const noexcept;

    /// Delay from an input sample to the centre of its response, in source frames. Output after
    /// `reset` begins with this much silence.
    [[nodiscard]] double latencyFrames() const noexcept;

    /// Clears the filters to silence.
    void reset() noexcept;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
