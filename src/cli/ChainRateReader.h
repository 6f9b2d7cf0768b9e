#pragma once

#include "cli/SoundFileReader.h"
#include "platform/core/AudioBufferList.h"
#include "platform/dsp/SampleRateConverter.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorbel {

/// Reads a sound file, converted to the chain's 48 kHz where needed. Removes the converter's
/// latency: n frames at rate r become exactly round(n·48000/r) frames, aligned with the file.
class ChainRateReader {
  public:
    /// Throws CommandError for a file that cannot be read or converted.
    explicit ChainRateReader(const std::string &path);

    /// At 48 kHz; see SoundFileReader::expectedFrames.
    [[nodiscard]] std::uint64_t expectedFrames() const;

    /// Fills two channels with the next frames; returns fewer than requested only at the end.
    /// Throws CommandError.
    std::uint32_t read(const AudioBufferList &output, std::uint32_t frames);

    /// Frames with non-finite samples, replaced with zeros before a conversion would spread them.
    /// In a file at 48 kHz the chain replaces and counts them.
    [[nodiscard]] std::uint64_t replacedFrames() const { return replacedFrames_; }

  private:
    [[nodiscard]] std::uint64_t atChainRate(std::uint64_t frames) const;
    std::uint32_t convert(const AudioBufferList &output, std::uint32_t frames);
    void fillInput();

    SoundFileReader file_;
    std::unique_ptr<SampleRateConverter> converter_; ///< null for a file at 48 kHz
    std::vector<float> input_;                       ///< two planes
    AudioBufferList pending_;                        ///< the unconsumed part of `input_`
    std::uint32_t pendingFrames_ = 0;
    std::uint64_t fileFrames_ = 0;
    bool fileEnded_ = false;
    std::uint64_t framesOut_ = 0;
    std::uint64_t replacedFrames_ = 0;
};

} // namespace quorbel
