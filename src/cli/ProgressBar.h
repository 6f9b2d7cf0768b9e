#pragma once

#include <chrono>
#include <cstdint>

namespace quorbel {

/// Shows a rendering's progress, speed against real time and remaining time on standard error.
/// Shows nothing unless standard error is a terminal.
class ProgressBar {
  public:
    /// `totalFrames` at 48 kHz; 0 if unknown.
    explicit ProgressBar(std::uint64_t totalFrames);
    /// Erases the bar.
    ~ProgressBar();
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    void update(std::uint64_t frames);

  private:
    using Time = std::chrono::steady_clock;

    std::uint64_t totalFrames_;
    bool onTerminal_;
    bool drawn_ = false;
    Time::time_point start_ = Time::now();
    Time::time_point nextDrawing_ = start_;
};

} // namespace quorbel
