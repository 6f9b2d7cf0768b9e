#include "platform/threads/SerialQueue.h"

#include "platform/threads/ThreadedSerialQueue.h"

#include <set>
#include <utility>

namespace quorbel {

namespace {

class ClockedSerialQueue final : public SerialQueue {
  public:
    explicit ClockedSerialQueue(Clock &clock) : clock_(clock) {}
    ~ClockedSerialQueue() override {
        for (const TimerID timer : timers_)
            clock_.cancel(timer);
    }

    void async(Task task) override {
        clock_.post([alive = std::weak_ptr<int>(alive_), task = std::move(task)] {
            if (!alive.expired())
                task();
        });
    }

    TimerID repeating(double seconds, Task task) override {
        return *timers_.insert(clock_.every(seconds, std::move(task))).first;
    }

    void cancel(TimerID timer) override {
        if (timers_.erase(timer) > 0)
            clock_.cancel(timer);
    }

  private:
    Clock &clock_;
    std::set<TimerID> timers_;
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
