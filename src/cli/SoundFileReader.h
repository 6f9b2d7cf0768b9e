#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorbel {

/// Reads a mono or stereo sound file as planar stereo at the file's own rate, block by block; mono
/// is heard on both sides. Reads ahead by some blocks, a constant amount. Throws CommandError,
/// naming the file, for any other file.
class SoundFileReader {
  public:
    explicit SoundFileReader(const std::string &path);
    ~SoundFileReader();
    SoundFileReader(const SoundFileReader &) = delete;
    SoundFileReader &operator=(const SoundFileReader &) = delete;

    [[nodiscard]] std::uint32_t sampleRate() const; ///< Hz

    /// Length according to the file, in frames; 0 if unknown. Compressed files may only estimate
    /// it.
    [[nodiscard]] std::uint64_t expectedFrames() const;

    /// Fills two channels with the next frames; fewer than asked only at the end. Throws
    /// CommandError if the file cannot be read or is shorter than it says.
    std::uint32_t read(const AudioBufferList &output, std::uint32_t frames);

  private:
    struct State;
    void fillBuffer();
    [[noreturn]] void fail(const std::string &reason) const;

    std::string path_;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
