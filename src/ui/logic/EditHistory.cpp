#include "ui/logic/EditHistory.h"

#include <utility>

namespace quorbel {

void EditHistory::beginGesture() {
    close();
    inGesture_ = true;
}

void EditHistory::endGesture() { close(); }

void EditHistory::close() {
    // Drops a gesture or burst that ended in its initial state.
    if ((gestureHasStep_ || lastIsOpen_) && !steps_.empty() &&
        steps_.back().before == steps_.back().after) {
        steps_.pop_back();
        position_ = steps_.size();
    }
    inGesture_ = false;
    gestureHasStep_ = false;
    lastIsOpen_ = false;
}

bool EditHistory::continuesLast(const std::string &key, double now) const {
    if (inGesture_)
        return gestureHasStep_;
    return lastIsOpen_ && key == lastKey_ && now - lastTime_ <= burstSeconds;
}

void EditHistory::record(EditState before, EditState after, std::string what,
                         const std::string &key, double now) {
    if (continuesLast(key, now)) {
        steps_.back().after = std::move(after);
        if (!inGesture_)
            steps_.back().what = std::move(what);
    } else {
        if (!inGesture_)
            close();
        if (before == after)
            return;
        steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(position_), steps_.end());
        steps_.push_back({std::move(before), std::move(after), std::move(what)});
        if (steps_.size() > maximumSteps)
            steps_.pop_front();
        position_ = steps_.size();
        gestureHasStep_ = inGesture_;
    }
    lastIsOpen_ = !inGesture_;
    lastKey_ = key;
    lastTime_ = now;
}

EditStep EditHistory::undo() {
    close();
    return steps_[--position_];
}

EditStep EditHistory::redo() {
    close();
    return steps_[position_++];
}

} // namespace quorbel
