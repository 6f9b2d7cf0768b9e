#pragma once

#include "platform/threads/SerialQueue.h"
#include "platform/threads/TimerQueue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace quorbel {

/// A serial queue with a thread of its own on real time.
class ThreadedSerialQueue final : public SerialQueue {
  public:
    explicit ThreadedSerialQueue(const std::string &name);
    ~ThreadedSerialQueue() override;

    void async(Task task) override;
    TimerID repeating(double firstSeconds, double seconds, Task task) override;
    /// The same, on multiples of `seconds` since the thread's start; the first is rounded up.
    TimerID repeatingAligned(double firstSeconds, double seconds, Task task);
    void cancel(TimerID timer) override;

  private:
    using SteadyClock = std::chrono::steady_clock;

    TimerID add(ClockTicks firstDue, ClockTicks interval, Task task);
    void run();
    [[nodiscard]] ClockTicks now() const;

    const SteadyClock::time_point start_ = SteadyClock::now();
    std::mutex mutex_; // guards what follows; free while a task runs
    std::condition_variable changed_;
    std::condition_variable finished_;
    std::deque<Task> waiting_;
    TimerQueue timers_;
    TimerID running_ = 0; // the timer whose task runs now
    bool stopping_ = false;

    std::thread thread_; // last: it uses all of the above
};

} // namespace quorbel
