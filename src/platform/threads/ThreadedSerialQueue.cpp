#include "platform/threads/ThreadedSerialQueue.h"

#include <algorithm>
#include <pthread.h>

namespace quorbel {

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

void ThreadedSerialQueue::async(Task task) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(task));
    }
    changed_.notify_one();
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
    if (timer != 0 && std::this_thread::get_id() != thread_.get_id())
        finished_.wait(lock, [&] { return running_ != timer; });
}

void ThreadedSerialQueue::run() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        Task task;
        if (auto timer = timers_.takeDue(now())) {
            running_ = timer->timer;
            task = [shared = std::move(timer->task)] { (*shared)(); };
        } else if (!waiting_.empty()) {
            task = std::move(waiting_.front());
            waiting_.pop_front();
        } else if (const auto due = timers_.nextDue()) {
            changed_.wait_for(lock, std::chrono::duration<double>(secondsOf(*due - now())));
            continue;
        } else {
            changed_.wait(lock);
            continue;
        }
        lock.unlock();
        task();
        task = nullptr; // what it holds is let go before a waiting `cancel` returns
        lock.lock();
        running_ = 0;
        finished_.notify_all();
    }
}

ClockTicks ThreadedSerialQueue::now() const {
    return clockTicks(std::chrono::duration<double>(SteadyClock::now() - start_).count());
}

} // namespace quorbel
