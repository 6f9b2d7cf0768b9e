#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorbel {

/// Reads a mono or stereo sound file as planar stereo at the file's own rate; copies mono to both
/// sides. Reads ahead by a constant number of frames. Throws CommandError with the file's name for
/// any other file.
class SoundFileReader {
  public:
    explicit SoundFileReader(const std::string &path);
    ~SoundFileReader();
    SoundFileReader(const SoundFileReader &) = delete;
    SoundFileReader &operator=(const SoundFileReader &) = delete;

    [[nodiscard]] std::uint32_t sampleRate() const; ///< Hz

    /// Length in frames according to the file; 0 if unknown. Compressed files may only estimate it.
    [[nodiscard]] std::uint64_t expectedFrames() const;

    /// Fills two channels with the next frames; returns fewer than requested only at the end.
    /// Throws CommandError if the file cannot be read or is truncated.
    std::uint32_t read(const AudioBufferList &output, std::uint32_t frames);

  private:
    struct State;
    void fillBuffer();
    [[noreturn]] void fail(const std::string &reason) const;

    std::string path_;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
