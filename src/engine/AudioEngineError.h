#pragma once

#include "platform/core/Status.h"

#include <stdexcept>

namespace quorbel {

/// Why the engine cannot run; what is shown to the user as it stands.
class AudioEngineError : public std::runtime_error {
  public:
    static AudioEngineError noOutputSelected();
    static AudioEngineError playbackStartFailed(Status status);
    static AudioEngineError soundServerLost(Status status);
    static AudioEngineError soundCutOff();
    static AudioEngineError rateNotSupported(double sampleRate);

  private:
    using std::runtime_error::runtime_error;
};

} // namespace quorbel
