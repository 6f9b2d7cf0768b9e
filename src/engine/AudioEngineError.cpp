#include "engine/AudioEngineError.h"

#include <fmt/format.h>

namespace quorbel {

AudioEngineError AudioEngineError::noOutputSelected() {
    return AudioEngineError("No output device selected. Choose your speakers as output.");
}

AudioEngineError AudioEngineError::playbackStartFailed(Status status) {
    return AudioEngineError(
        fmt::format("Couldn't start playback on the output device (OSStatus {}).", status));
}

AudioEngineError AudioEngineError::soundServerLost(Status status) {
    return AudioEngineError(fmt::format("The sound server went away (OSStatus {}).", status));
}

AudioEngineError AudioEngineError::rateNotSupported(double sampleRate) {
    return AudioEngineError(
        fmt::format("The output device runs at {} Hz, which cannot be converted.", sampleRate));
}

AudioEngineError AudioEngineError::soundCutOff() {
    return AudioEngineError("The processed sound no longer reaches the output device.");
}

} // namespace quorbel
