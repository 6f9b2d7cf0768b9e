#pragma once

#include "platform/threads/Timer.h"

#include <functional>
#include <optional>

namespace quorbel {

class AudioEngine;
class EngineModel;

/// Starts processing in a session that is itself still starting: devices appear one by one, and the
/// session manager may come after the sound server. Tries until processing is wanted by the engine,
/// is refused because another program processes, or for 30 s. [main]
class Resumption {
  public:
    /// `ended` is called once, when no further attempt follows. All must outlive it.
    Resumption(AudioEngine &engine, EngineModel &model, Clock &clock, std::function<void()> ended);

    [[nodiscard]] bool isUnderWay() const { return looks_.isSet(); }

  private:
    void look();
    [[nodiscard]] bool isOutputReady();

    AudioEngine &engine_;
    EngineModel &model_;
    Clock &clock_;
    std::function<void()> ended_;
    double began_;
    std::optional<double> standInSince_; ///< time at which another device was there first
    Timer looks_;
};

} // namespace quorbel
