#pragma once

#include "cli/SoundFileReader.h"
#include "platform/core/AudioBufferList.h"
#include "platform/dsp/SampleRateConverter.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorbel {

/// A sound file at the chain's 48 kHz. Other rates are converted and stay aligned with the file:
/// the converter's latency is removed, and n frames at rate r become exactly round(n·48000/r).
class ChainRateReader {
  public:
    /// Throws CommandError for a file that cannot be read or converted.
    explicit ChainRateReader(const std::string &path);

    /// At 48 kHz; see SoundFileReader::expectedFrames.
    [[nodiscard]] std::uint64_t expectedFrames() const;

    /// Fills two channels with the next frames; fewer than asked only at the end. Throws
    /// CommandError.
    std::uint32_t read(const AudioBufferList &output, std::uint32_t frames);

    /// Frames with samples that were not finite. Before a conversion, which would spread them, they
    /// are replaced by zero here; otherwise the chain does so, and counts.
    [[nodiscard]] std::uint64_t replacedFrames() const { return replacedFrames_; }

  private:
    [[nodiscard]] std::uint64_t atChainRate(std::uint64_t frames) const;
    std::uint32_t convert(const AudioBufferList &output, std::uint32_t frames);
    void fillInput();

    SoundFileReader file_;
    std::unique_ptr<SampleRateConverter> converter_; ///< null for a file at 48 kHz
    std::vector<float> input_;                       ///< two planes
    AudioBufferList pending_; ///< the part of `input_` that the converter has not consumed
    std::uint32_t pendingFrames_ = 0;
    std::uint64_t fileFrames_ = 0;
    bool fileEnded_ = false;
    std::uint64_t framesOut_ = 0;
    std::uint64_t replacedFrames_ = 0;
};

} // namespace quorbel
