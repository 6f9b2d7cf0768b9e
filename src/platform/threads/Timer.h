#pragma once

#include "platform/threads/Clock.h"

#include <utility>

namespace quorbel {

/// Owns one timer of a clock. Never fires after destruction, reassignment or invalidation. The
/// clock must outlive it. [main]
class Timer {
  public:
    Timer() = default;
    static Timer once(Clock &clock, double seconds, Clock::Task task) {
        return {clock, clock.after(seconds, std::move(task))};
    }
    static Timer repeating(Clock &clock, double seconds, Clock::Task task) {
        return {clock, clock.every(seconds, std::move(task))};
    }

    Timer(Timer &&other) noexcept
        : clock_(std::exchange(other.clock_, nullptr)), id_(std::exchange(other.id_, 0)) {}
    Timer &operator=(Timer &&other) noexcept {
        if (this != &other) {
            invalidate();
            clock_ = std::exchange(other.clock_, nullptr);
            id_ = std::exchange(other.id_, 0);
        }
        return *this;
    }
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;
    ~Timer() { invalidate(); }

    void invalidate() {
        if (clock_ != nullptr)
            clock_->cancel(id_);
        clock_ = nullptr;
        id_ = 0;
    }

    /// True from construction to invalidation, also after a one-shot timer has fired.
    [[nodiscard]] bool isSet() const { return clock_ != nullptr; }

  private:
    Timer(Clock &clock, Clock::TimerID id) : clock_(&clock), id_(id) {}

    Clock *clock_ = nullptr;
    Clock::TimerID id_ = 0;
};

} // namespace quorbel
