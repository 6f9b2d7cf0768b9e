#pragma once

#include <cstdint>
#include <functional>

namespace quorbel {

/// Time as the program sees it, and the main thread's queue of work. Every wait, debounce and
/// repeating timer uses it. Tests and file rendering run on a clock that they move themselves.
///
/// Callbacks run on the main thread, one at a time, in time order (in order of arrival where
/// equal).
class Clock {
  public:
    using Task = std::function<void()>;
    using TimerID = std::uint64_t; ///< 0 names no timer

    virtual ~Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;

    /// Seconds since an arbitrary start; never goes back. [any]
    [[nodiscard]] virtual double now() const = 0;

    /// Runs `task` once, `seconds` from now (at once, but not inside this call, when not positive).
    /// [main]
    virtual TimerID after(double seconds, Task task) = 0;

    /// Runs `task` every `seconds` (> 0), the first time after one interval. [main]
    virtual TimerID every(double seconds, Task task) = 0;

    /// The task does not run (again) after this; unknown ids are ignored. A task may cancel itself.
    /// [main]
    virtual void cancel(TimerID timer) = 0;

    /// Hands work over to the main thread. [any]
    virtual void post(Task task) = 0;

  protected:
    Clock() = default;
};

} // namespace quorbel
