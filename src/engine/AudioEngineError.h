#pragma once

#include "platform/core/Status.h"

#include <stdexcept>

namespace quorbel {

/// The reason why the engine cannot run, shown to the user verbatim.
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
