#pragma once

#include "platform/core/Status.h"

#include <fmt/format.h>

#include <stdexcept>

namespace quorbel {

/// The reason why the engine cannot run, shown to the user verbatim.
class AudioEngineError : public std::runtime_error {
  public:
    static AudioEngineError noOutputSelected() {
        return AudioEngineError("No output device selected. Choose your speakers as output.");
    }
    static AudioEngineError playbackStartFailed(Status status) {
        return AudioEngineError(
            fmt::format("Couldn't start playback on the output device (OSStatus {}).", status));
    }
    static AudioEngineError soundServerLost(Status status) {
        return AudioEngineError(fmt::format("The sound server went away (OSStatus {}).", status));
    }
    static AudioEngineError soundCutOff() {
        return AudioEngineError("The processed sound no longer reaches the output device.");
    }
    static AudioEngineError rateNotSupported(double sampleRate) {
        return AudioEngineError(
            fmt::format("The output device runs at {} Hz, which cannot be converted.", sampleRate));
    }

  private:
    using std::runtime_error::runtime_error;
};

} // namespace quorbel
