#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>
#include <memory>
#include <string>

namespace quorbel {

/// Writes stereo sound at 48 kHz as a WAV file of 32-bit floats (RF64 if it may exceed 4 GiB). The
/// file gets its name at the end: OUT is complete or untouched even after a crash. Throws
/// CommandError with the file's name if it cannot be written.
class SoundFileWriter {
  public:
    /// `expectedFrames` decides between WAV and RF64; 0 if unknown.
    SoundFileWriter(const std::string &path, std::uint64_t expectedFrames);
    ~SoundFileWriter();
    SoundFileWriter(const SoundFileWriter &) = delete;
    SoundFileWriter &operator=(const SoundFileWriter &) = delete;

    /// Buffers a constant number of frames; an error may concern an earlier call's sound.
    void write(const AudioBufferList &sound, std::uint32_t frames);

    /// Writes the buffered rest and gives the file its name; without this call no file appears.
    void finish();

  private:
    struct State;
    void flush();

    std::unique_ptr<State> state_;
};

} // namespace quorbel
