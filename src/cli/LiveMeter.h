#pragma once

#include "platform/core/Log.h"
#include "platform/threads/Timer.h"

#include <QObject>

#include <mutex>
#include <string>

namespace quorbel {

class AudioEngine;

/// Shows the engine's state in one line on standard error, at most ten times a second; log lines
/// scroll past above it. Shows nothing and switches the engine's display off unless standard error
/// is a terminal. [main]
class LiveMeter {
  public:
    /// Both must outlive the meter.
    LiveMeter(AudioEngine &engine, Clock &clock);
    /// Erases the line.
    ~LiveMeter();
    LiveMeter(const LiveMeter &) = delete;
    LiveMeter &operator=(const LiveMeter &) = delete;

  private:
    void drawSoon();
    void draw();
    void printAbove(std::string_view line);

    AudioEngine &engine_;
    Clock &clock_;
    QObject changes_; ///< its destruction disconnects the signals
    bool isShown_ = false;
    bool hasBegun_ = false; ///< the first start has succeeded or failed
    LogSink previousSink_;
    std::mutex mutex_; ///< guards `shown_` against log lines from other threads
    std::string shown_;
    Timer timer_; ///< set while a redraw is pending
};

} // namespace quorbel
