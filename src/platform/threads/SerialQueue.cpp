#include "platform/threads/SerialQueue.h"

#include "platform/threads/ThreadedSerialQueue.h"
#include "platform/threads/Timer.h"

#include <map>
#include <mutex>
#include <set>
#include <utility>

namespace quorbel {

namespace {

class ClockedSerialQueue final : public SerialQueue {
  public:
    explicit ClockedSerialQueue(Clock &clock) : clock_(clock) {}

    void async(Task task) override {
        clock_.post([alive = std::weak_ptr<int>(alive_), task = std::move(task)] {
            if (!alive.expired())
                task();
        });
    }

    TimerID repeating(double firstSeconds, double seconds, Task task) override {
        const TimerID id = ++lastID_;
        timers_[id] = Timer::once(clock_, firstSeconds, [this, id, seconds, task] {
            // Set before the task runs, which may cancel it.
            timers_[id] = Timer::repeating(clock_, seconds, task);
            task();
        });
        return id;
    }

    void cancel(TimerID timer) override { timers_.erase(timer); }

  private:
    Clock &clock_;
    TimerID lastID_ = 0;
    std::map<TimerID, Timer> timers_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

/// A queue of its own on a thread that it shares with others.
class QueueOnSharedThread final : public SerialQueue {
  public:
    explicit QueueOnSharedThread(std::shared_ptr<ThreadedSerialQueue> worker)
        : worker_(std::move(worker)) {}
    ~QueueOnSharedThread() override {
        // A task that is waited for may cancel its own timer meanwhile.
        std::set<TimerID> timers;
        {
            const std::lock_guard lock(timersMutex_);
            timers.swap(timers_);
        }
        for (const TimerID timer : timers)
            worker_->cancel(timer);
        const std::lock_guard lock(pending_->mutex); // waits for a task that is running
        pending_->isDropped = true;
    }

    void async(Task task) override {
        worker_->async([pending = pending_, task = std::move(task)] {
            const std::lock_guard lock(pending->mutex);
            if (!pending->isDropped)
                task();
        });
    }

    TimerID repeating(double firstSeconds, double seconds, Task task) override {
        const std::lock_guard lock(timersMutex_); // the task may run and cancel before we return
        const TimerID id = worker_->repeatingAligned(firstSeconds, seconds, std::move(task));
        timers_.insert(id);
        return id;
    }

    void cancel(TimerID timer) override {
        worker_->cancel(timer);
        const std::lock_guard lock(timersMutex_);
        timers_.erase(timer);
    }

  private:
    /// What was handed over and has not run.
    struct Pending {
        std::mutex mutex;
        bool isDropped = false;
    };

    std::shared_ptr<ThreadedSerialQueue> worker_;
    std::mutex timersMutex_;
    std::set<TimerID> timers_;
    std::shared_ptr<Pending> pending_ = std::make_shared<Pending>();
};

} // namespace

SerialQueueFactory sharedThreadSerialQueues(std::string threadName) {
    auto shared = std::make_shared<std::weak_ptr<ThreadedSerialQueue>>();
    return [shared, threadName = std::move(threadName)](const std::string &) {
        auto worker = shared->lock();
        if (!worker) {
            worker = std::make_shared<ThreadedSerialQueue>(threadName);
            *shared = worker;
        }
        return std::make_unique<QueueOnSharedThread>(std::move(worker));
    };
}

SerialQueueFactory threadedSerialQueues() {
    return [](const std::string &name) { return std::make_unique<ThreadedSerialQueue>(name); };
}

SerialQueueFactory clockedSerialQueues(Clock &clock) {
    return [&clock](const std::string &) { return std::make_unique<ClockedSerialQueue>(clock); };
}

} // namespace quorbel
