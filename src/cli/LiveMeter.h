#pragma once

#include "platform/core/Log.h"
#include "platform/threads/Timer.h"

#include <mutex>
#include <string>

namespace quorbel {

class AudioEngine;

/// One line on standard error that follows the engine ten times a second; log lines scroll past
/// above it. Does nothing where standard error is not a terminal. [main]
class LiveMeter {
  public:
    /// Both must outlive the meter.
    LiveMeter(const AudioEngine &engine, Clock &clock);
    /// Takes the line away.
    ~LiveMeter();
    LiveMeter(const LiveMeter &) = delete;
    LiveMeter &operator=(const LiveMeter &) = delete;

  private:
    void draw();
    void printAbove(std::string_view line);

    const AudioEngine &engine_;
    LogSink previousSink_;
    std::mutex mutex_; ///< guards `shown_`; log lines come from several threads
    std::string shown_;
    Timer timer_;
};

} // namespace quorbel
