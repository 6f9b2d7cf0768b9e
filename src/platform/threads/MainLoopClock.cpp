#include "platform/threads/MainLoopClock.h"

#include "platform/threads/TimerQueue.h"

#include <QCoreApplication>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <cassert>
#include <chrono>

namespace quorbel {

using SteadyClock = std::chrono::steady_clock;

struct MainLoopClock::State {
    QObject context; // receives posted work; its destruction drops queued work
    QTimer wakeUp;   // set for the earliest timer
    TimerQueue timers;
    const SteadyClock::time_point start = SteadyClock::now();

    [[nodiscard]] double now() const {
        return std::chrono::duration<double>(SteadyClock::now() - start).count();
    }

    void arm() {
        const auto due = timers.nextDue();
        if (!due) {
            wakeUp.stop();
            return;
        }
        // Rounds up: an early wake-up would need a second one.
        using Milliseconds = std::chrono::milliseconds;
        const auto wait =
            std::chrono::ceil<Milliseconds>(std::chrono::duration<double>(secondsOf(*due) - now()));
        wakeUp.start(std::clamp(wait, Milliseconds(0), Milliseconds(std::chrono::hours(24))));
    }

    void runDue() {
        // Fixes the limit at entry, so a busy repeating timer cannot block the loop.
        const ClockTicks limit = clockTicks(now());
        while (const auto timer = timers.takeDue(limit))
            (*timer->task)();
        arm();
    }
};

MainLoopClock::MainLoopClock() : state_(std::make_unique<State>()) {
    assert(QCoreApplication::instance() != nullptr);
    state_->wakeUp.setTimerType(Qt::PreciseTimer);
    state_->wakeUp.setSingleShot(true);
    QObject::connect(&state_->wakeUp, &QTimer::timeout, &state_->context,
                     [state = state_.get()] { state->runDue(); });
}

MainLoopClock::~MainLoopClock() = default;

double MainLoopClock::now() const { return state_->now(); }

Clock::TimerID MainLoopClock::after(double seconds, Task task) {
    const auto due = clockTicks(now() + std::max(seconds, 0.0));
    const TimerID id = state_->timers.add(due, 0, std::move(task));
    state_->arm();
    return id;
}

Clock::TimerID MainLoopClock::every(double seconds, Task task) {
    const ClockTicks interval = std::max<ClockTicks>(clockTicks(seconds), 1);
    const TimerID id = state_->timers.add(clockTicks(now()) + interval, interval, std::move(task));
    state_->arm();
    return id;
}

void MainLoopClock::cancel(TimerID timer) {
    state_->timers.cancel(timer);
    state_->arm();
}

void MainLoopClock::post(Task task) {
    QMetaObject::invokeMethod(&state_->context, std::move(task), Qt::QueuedConnection);
}

} // namespace quorbel
