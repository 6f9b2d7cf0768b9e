#pragma once

#include "platform/threads/Clock.h"

#include <functional>
#include <memory>
#include <string>

namespace quorbel {

/// Runs repeating tasks one at a time, away from its callers. Not for audio threads: setting a
/// timer may allocate and lock.
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

    /// On return the task is not running and does not run again. On the queue itself it returns at
    /// once, and the running call is the last. Unknown ids are ignored. [any]
    virtual void cancel(TimerID timer) = 0;

  protected:
    SerialQueue() = default;
};

/// Makes queues, by name (what a debugger shows, cut to 15 bytes). The program chooses one and
/// passes it down.
using SerialQueueFactory = std::function<std::unique_ptr<SerialQueue>(const std::string &name)>;

/// Each queue has a thread of its own and runs on real time.
[[nodiscard]] SerialQueueFactory threadedSerialQueues();

/// The queues of one factory share a thread on real time, named `threadName`, which lives as long
/// as one of them. A queue waits for the others' tasks as well, so this is for short ones. Timers
/// fall on multiples of their interval, the first up to one interval late: so those of several
/// queues fall due together, which costs one wake-up.
[[nodiscard]] SerialQueueFactory sharedThreadSerialQueues(std::string threadName);

/// Queues that run on `clock` and its thread. On a manual clock their work falls on exactly the
/// same sample in every run. All calls are then [main]; the clock must outlive the queues.
[[nodiscard]] SerialQueueFactory clockedSerialQueues(Clock &clock);

} // namespace quorbel
