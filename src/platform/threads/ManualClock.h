#pragma once

#include "platform/threads/TimerQueue.h"

#include <mutex>
#include <vector>

namespace quorbel {

/// A clock that its owner moves: for tests and for rendering files. Nothing runs except inside
/// `advance`, on the thread that calls it, which thereby is the main thread.
class ManualClock final : public Clock {
  public:
    /// Lets `seconds` (not negative) pass: posted work and due timers run in time order, and `now`
    /// is each timer's own time while it runs. Timers and work that callbacks add run too if they
    /// fall due in the same span. Not to be called from inside a callback. [main]
    void advance(double seconds);

    /// Runs posted work and due timers. [main]
    void runPending() { advance(0.0); }

    [[nodiscard]] double now() const override;
    TimerID after(double seconds, Task task) override;
    TimerID every(double seconds, Task task) override;
    void cancel(TimerID timer) override;
    void post(Task task) override;

  private:
    void runPosted();
    void setNow(ClockTicks ticks);
    [[nodiscard]] ClockTicks ticksNow() const;

    TimerQueue timers_; // main only
    bool advancing_ = false;

    mutable std::mutex mutex_; // guards what follows
    ClockTicks now_ = 0;
    std::vector<Task> posted_;
};

} // namespace quorbel
