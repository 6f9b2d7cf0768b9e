#pragma once

#include "platform/core/Log.h"
#include "platform/threads/Timer.h"

#include <QObject>

#include <mutex>
#include <string>

namespace quorbel {

class AudioEngine;

/// One line on standard error that follows the engine, ten times a second at most; log lines scroll
/// past above it. Shows nothing and switches the engine's display off where standard error is not a
/// terminal. [main]
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
    bool hasBegun_ = false; ///< the first start has come to its end
    LogSink previousSink_;
    std::mutex mutex_; ///< guards `shown_`; log lines come from several threads
    std::string shown_;
    Timer timer_; ///< set while the line is to be drawn again
};

} // namespace quorbel
