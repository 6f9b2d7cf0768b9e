#pragma once

#include "platform/threads/Clock.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace quorbel {

/// Time in whole ticks of 1/705 600 000 s. A frame of every usual sample rate, a display frame and
/// a millisecond are whole numbers of ticks: sums of any length stay exact.
using ClockTicks = std::int64_t;
inline constexpr ClockTicks clockTicksPerSecond = 705'600'000;

/// Rounds to the nearest tick.
[[nodiscard]] ClockTicks clockTicks(double seconds);
[[nodiscard]] constexpr double secondsOf(ClockTicks ticks) {
    return static_cast<double>(ticks) / static_cast<double>(clockTicksPerSecond);
}

/// The timers of one clock, ordered by due time, then by arrival. Not thread-safe.
class TimerQueue {
  public:
    using Task = Clock::Task;
    using TimerID = Clock::TimerID;

    /// `interval` 0: fires once.
    TimerID add(ClockTicks due, ClockTicks interval, Task task);
    void cancel(TimerID timer);

    /// Due time of the next timer.
    [[nodiscard]] std::optional<ClockTicks> nextDue() const;

    struct Due {
        TimerID timer = 0;
        std::shared_ptr<Task> task; ///< shared, because a task may cancel itself while it runs
    };
    /// Takes the next timer due at `now`; reschedules it if repeating. Skips whole missed intervals
    /// instead of firing in a burst.
    [[nodiscard]] std::optional<Due> takeDue(ClockTicks now);

  private:
    using Key = std::pair<ClockTicks, std::uint64_t>; // due, order of arrival
    struct Entry {
        TimerID id = 0;
        ClockTicks interval = 0;
        std::shared_ptr<Task> task;
    };

    std::map<Key, Entry> byTime_;
    std::map<TimerID, Key> keys_;
    TimerID lastID_ = 0;
    std::uint64_t arrivals_ = 0;
};

} // namespace quorbel
