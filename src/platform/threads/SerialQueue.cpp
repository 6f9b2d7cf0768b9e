#include "platform/threads/SerialQueue.h"

#include "platform/threads/ThreadedSerialQueue.h"
#include "platform/threads/Timer.h"

#include <map>
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

} // namespace

SerialQueueFactory threadedSerialQueues() {
    return [](const std::string &name) { return std::make_unique<ThreadedSerialQueue>(name); };
}

SerialQueueFactory clockedSerialQueues(Clock &clock) {
    return [&clock](const std::string &) { return std::make_unique<ClockedSerialQueue>(clock); };
}

} // namespace quorbel
