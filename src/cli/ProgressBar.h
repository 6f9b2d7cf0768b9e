#pragma once

#include <chrono>
#include <cstdint>

namespace quorbel {

/// Shows on standard error how far a rendering is, its speed against real time and the time left.
/// Shows nothing where standard error is not a terminal.
class ProgressBar {
  public:
    /// `totalFrames` at 48 kHz, 0 for unknown.
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
