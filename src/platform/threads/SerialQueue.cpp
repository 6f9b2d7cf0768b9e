#include "platform/threads/SerialQueue.h"

#include "platform/threads/Timer.h"
#include "platform/threads/TimerQueue.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <pthread.h>
#include <set>
#include <thread>
#include <utility>

namespace quorbel {

namespace {

/// A serial queue with a thread of its own on real time.
class ThreadedSerialQueue final : public SerialQueue {
  public:
    explicit ThreadedSerialQueue(const std::string &name);
    ~ThreadedSerialQueue() override;

    TimerID repeating(double firstSeconds, double seconds, Task task) override;
    /// Like `repeating`, but on multiples of `seconds` since construction; the first is rounded up.
    TimerID repeatingAligned(double firstSeconds, double seconds, Task task);
    void cancel(TimerID timer) override;
    [[nodiscard]] bool isOwnThread() const {
        return std::this_thread::get_id() == thread_.get_id();
    }

  private:
    using SteadyClock = std::chrono::steady_clock;

    TimerID add(ClockTicks firstDue, ClockTicks interval, Task task);
    void run();
    [[nodiscard]] ClockTicks now() const;

    const SteadyClock::time_point start_ = SteadyClock::now();
    std::mutex mutex_; // guards the members below; free while a task runs
    std::condition_variable changed_;
    std::condition_variable finished_;
    TimerQueue timers_;
    TimerID running_ = 0; // the timer whose task runs now
    bool stopping_ = false;

    std::thread thread_; // last member: it uses all others
};

ThreadedSerialQueue::ThreadedSerialQueue(const std::string &name) : thread_([this] { run(); }) {
    constexpr std::size_t longestThreadName = 15;
    pthread_setname_np(thread_.native_handle(), name.substr(0, longestThreadName).c_str());
}

ThreadedSerialQueue::~ThreadedSerialQueue() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

SerialQueue::TimerID ThreadedSerialQueue::repeating(double firstSeconds, double seconds,
                                                    Task task) {
    const ClockTicks interval = std::max<ClockTicks>(clockTicks(seconds), 1);
    return add(now() + clockTicks(firstSeconds), interval, std::move(task));
}

SerialQueue::TimerID ThreadedSerialQueue::repeatingAligned(double firstSeconds, double seconds,
                                                           Task task) {
    const ClockTicks interval = std::max<ClockTicks>(clockTicks(seconds), 1);
    const ClockTicks first = now() + clockTicks(firstSeconds);
    return add((first + interval - 1) / interval * interval, interval, std::move(task));
}

SerialQueue::TimerID ThreadedSerialQueue::add(ClockTicks firstDue, ClockTicks interval, Task task) {
    TimerID id = 0;
    {
        const std::lock_guard lock(mutex_);
        id = timers_.add(firstDue, interval, std::move(task));
    }
    changed_.notify_one();
    return id;
}

void ThreadedSerialQueue::cancel(TimerID timer) {
    std::unique_lock lock(mutex_);
    timers_.cancel(timer);
    if (timer != 0 && !isOwnThread())
        finished_.wait(lock, [&] { return running_ != timer; });
}

void ThreadedSerialQueue::run() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        auto timer = timers_.takeDue(now());
        if (!timer) {
            if (const auto due = timers_.nextDue())
                changed_.wait_for(lock, std::chrono::duration<double>(secondsOf(*due - now())));
            else
                changed_.wait(lock);
            continue;
        }
        running_ = timer->timer;
        lock.unlock();
        (*timer->task)();
        timer.reset(); // frees the task's captures before a waiting `cancel` returns
        lock.lock();
        running_ = 0;
        finished_.notify_all();
    }
}

ClockTicks ThreadedSerialQueue::now() const {
    return clockTicks(std::chrono::duration<double>(SteadyClock::now() - start_).count());
}

class ClockedSerialQueue final : public SerialQueue {
  public:
    explicit ClockedSerialQueue(Clock &clock) : clock_(clock) {}

    TimerID repeating(double firstSeconds, double seconds, Task task) override {
        const TimerID id = ++lastID_;
        timers_[id] = Timer::once(clock_, firstSeconds, [this, id, seconds, task] {
            // Sets the timer first, because the task may cancel it.
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
};

/// A queue on a thread shared with other queues.
class QueueOnSharedThread final : public SerialQueue {
  public:
    explicit QueueOnSharedThread(std::shared_ptr<ThreadedSerialQueue> worker)
        : worker_(std::move(worker)) {}
    ~QueueOnSharedThread() override {
        // Cancels without the lock, because a running task may cancel its own timer.
        std::set<TimerID> timers;
        {
            const std::lock_guard lock(timersMutex_);
            timers.swap(timers_);
            timers.insert(cancelledInside_);
        }
        for (const TimerID timer : timers)
            worker_->cancel(timer);
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
        if (timers_.erase(timer) > 0 && worker_->isOwnThread())
            cancelledInside_ = timer;
    }

  private:
    std::shared_ptr<ThreadedSerialQueue> worker_;
    std::mutex timersMutex_;
    std::set<TimerID> timers_;
    TimerID cancelledInside_ = 0; ///< by a task that may still run; perhaps its own timer
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
