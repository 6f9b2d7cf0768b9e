#pragma once

#include "platform/threads/Timer.h"

#include <functional>
#include <optional>

namespace quorbel {

class AudioEngine;
class EngineModel;

/// Starts processing while the session itself starts: devices appear one by one, and the session
/// manager may follow the sound server. Retries until processing is wanted, or refused because
/// another program processes, for 30 s at most. [main]
class Resumption {
  public:
    /// Calls `ended` once, after the last attempt. All must outlive it.
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
    std::optional<double> standInSince_; ///< time of the first look that found a stand-in device
    Timer looks_;
};

} // namespace quorbel
