#pragma once

#include "platform/core/AudioBufferList.h"

#include <cstdint>
#include <memory>
#include <string>

namespace quorbel {

/// Writes stereo sound at 48 kHz as a WAV file of 32-bit floats (RF64 where it may pass 4 GiB). The
/// file takes its name at the end: OUT is whole or untouched, whatever ends the program. Throws
/// CommandError, naming the file, when it cannot be written.
class SoundFileWriter {
  public:
    /// `expectedFrames` decides between the two forms; 0 for unknown.
    SoundFileWriter(const std::string &path, std::uint64_t expectedFrames);
    ~SoundFileWriter();
    SoundFileWriter(const SoundFileWriter &) = delete;
    SoundFileWriter &operator=(const SoundFileWriter &) = delete;

    /// Gathers some blocks, a constant amount, so an error may belong to an earlier call's sound.
    void write(const AudioBufferList &sound, std::uint32_t frames);

    /// Writes the gathered rest and gives the file its name; without this call nothing is left
    /// behind.
    void finish();

  private:
    struct State;
    void flush();

    std::unique_ptr<State> state_;
};

} // namespace quorbel
