#pragma once

#include "platform/threads/TimerQueue.h"

#include <mutex>
#include <vector>

namespace quorbel {

/// A clock that its owner advances, for tests and file rendering. Tasks run only inside `advance`,
/// on the calling thread, which thereby is the main thread.
class ManualClock final : public Clock {
  public:
    /// Advances time by `seconds` (not negative). Runs posted work and due timers in time order,
    /// with `now` at each timer's due time; includes those that callbacks add within the same span.
    /// Never called from a callback. [main]
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

    mutable std::mutex mutex_; // guards the members below
    ClockTicks now_ = 0;
    std::vector<Task> posted_;
};

} // namespace quorbel
