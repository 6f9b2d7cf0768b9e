#pragma once

#include "platform/threads/Clock.h"

#include <functional>
#include <memory>
#include <string>

namespace quorbel {

/// Runs repeating tasks one at a time, asynchronously to its callers. Not for audio threads:
/// setting a timer may allocate and lock.
class SerialQueue {
  public:
    using Task = Clock::Task;
    using TimerID = Clock::TimerID; ///< 0 names no timer

    /// Ends the timers; waits for a running task.
    virtual ~SerialQueue() = default;
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    /// Runs `task` on the queue `firstSeconds` from now and then every `seconds` (both > 0). [any]
    virtual TimerID repeating(double firstSeconds, double seconds, Task task) = 0;

    /// Ends the timer; on return its task is not running. Returns at once on the queue itself,
    /// where the running call is the last. Ignores unknown ids. [any]
    virtual void cancel(TimerID timer) = 0;

  protected:
    SerialQueue() = default;
};

/// Makes queues by name; debuggers show its first 15 bytes. The program chooses one factory and
/// passes it down.
using SerialQueueFactory = std::function<std::unique_ptr<SerialQueue>(const std::string &name)>;

/// Makes queues with a thread each, on real time.
[[nodiscard]] SerialQueueFactory threadedSerialQueues();

/// Makes queues that share one thread on real time, named `threadName`; it ends with the last
/// queue. Tasks must be short, because each delays all queues. Timers fire on multiples of their
/// interval, the first up to one interval late, so timers of several queues share wake-ups.
[[nodiscard]] SerialQueueFactory sharedThreadSerialQueues(std::string threadName);

/// Makes queues on `clock` and its thread. On a manual clock, tasks run at the same sample in every
/// run. All calls are then [main]; the clock must outlive the queues.
[[nodiscard]] SerialQueueFactory clockedSerialQueues(Clock &clock);

} // namespace quorbel
