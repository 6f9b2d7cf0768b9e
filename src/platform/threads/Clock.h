#pragma once

#include <cstdint>
#include <functional>

namespace quorbel {

/// The program's time source and the main thread's work queue. Every wait, debounce and repeating
/// timer uses it. Tests and file rendering advance a clock of their own.
///
/// Callbacks run on the main thread, one at a time, in order of time, then of arrival.
class Clock {
  public:
    using Task = std::function<void()>;
    using TimerID = std::uint64_t; ///< 0 names no timer

    virtual ~Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;

    /// Seconds since an arbitrary start; never goes back. [any]
    [[nodiscard]] virtual double now() const = 0;

    /// Runs `task` once after `seconds`; at once, but never inside this call, if not positive.
    /// [main]
    virtual TimerID after(double seconds, Task task) = 0;

    /// Runs `task` every `seconds` (> 0), the first time after one interval. [main]
    virtual TimerID every(double seconds, Task task) = 0;

    /// Prevents further runs of the task; ignores unknown ids. A task may cancel itself. [main]
    virtual void cancel(TimerID timer) = 0;

    /// Queues `task` for the main thread. [any]
    virtual void post(Task task) = 0;

  protected:
    Clock() = default;
};

} // namespace quorbel
