#include "platform/threads/ManualClock.h"

#include <algorithm>
#include <cassert>

namespace quorbel {

void ManualClock::advance(double seconds) {
    assert(!advancing_ && "advance is not for callbacks");
    assert(seconds >= 0.0);
    advancing_ = true;
    const ClockTicks target = ticksNow() + clockTicks(seconds);
    runPosted();
    for (auto due = timers_.nextDue(); due && *due <= target; due = timers_.nextDue()) {
        setNow(std::max(*due, ticksNow()));
        // Queries the queue for every timer, because tasks may cancel or set others.
        if (const auto timer = timers_.takeDue(*due))
            (*timer->task)();
        runPosted();
    }
    setNow(target);
    advancing_ = false;
}

void ManualClock::runPosted() {
    // Includes work posted by posted work, after all earlier work.
    for (;;) {
        std::vector<Task> batch;
        {
            const std::lock_guard lock(mutex_);
            batch.swap(posted_);
        }
        if (batch.empty())
            return;
        for (const Task &task : batch)
            task();
    }
}

double ManualClock::now() const { return secondsOf(ticksNow()); }

Clock::TimerID ManualClock::after(double seconds, Task task) {
    return timers_.add(ticksNow() + clockTicks(std::max(seconds, 0.0)), 0, std::move(task));
}

Clock::TimerID ManualClock::every(double seconds, Task task) {
    const ClockTicks interval = std::max<ClockTicks>(clockTicks(seconds), 1);
    return timers_.add(ticksNow() + interval, interval, std::move(task));
}

void ManualClock::cancel(TimerID timer) { timers_.cancel(timer); }

void ManualClock::post(Task task) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
}

void ManualClock::setNow(ClockTicks ticks) {
    const std::lock_guard lock(mutex_);
    now_ = ticks;
}

ClockTicks ManualClock::ticksNow() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

} // namespace quorbel
