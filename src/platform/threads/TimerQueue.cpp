#include "platform/threads/TimerQueue.h"

#include <cmath>

namespace quorbel {

ClockTicks clockTicks(double seconds) {
    return std::llround(seconds * static_cast<double>(clockTicksPerSecond));
}

TimerQueue::TimerID TimerQueue::add(ClockTicks due, ClockTicks interval, Task task) {
    const TimerID id = ++lastID_;
    const Key key{due, ++arrivals_};
    byTime_.emplace(key, Entry{id, interval, std::make_shared<Task>(std::move(task))});
    keys_.emplace(id, key);
    return id;
}

void TimerQueue::cancel(TimerID timer) {
    const auto found = keys_.find(timer);
    if (found == keys_.end())
        return;
    byTime_.erase(found->second);
    keys_.erase(found);
}

std::optional<ClockTicks> TimerQueue::nextDue() const {
    if (byTime_.empty())
        return std::nullopt;
    return byTime_.begin()->first.first;
}

std::optional<TimerQueue::Due> TimerQueue::takeDue(ClockTicks now) {
    if (byTime_.empty() || byTime_.begin()->first.first > now)
        return std::nullopt;

    auto node = byTime_.extract(byTime_.begin());
    const Entry &entry = node.mapped();
    Due result{entry.id, entry.task};
    if (entry.interval == 0) {
        keys_.erase(entry.id);
    } else {
        const ClockTicks due = node.key().first;
        const ClockTicks missed = (now - due) / entry.interval;
        node.key() = {due + (missed + 1) * entry.interval, ++arrivals_};
        keys_[entry.id] = node.key();
        byTime_.insert(std::move(node));
    }
    return result;
}

} // namespace quorbel
