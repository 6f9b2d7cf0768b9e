#pragma once

#include "platform/threads/Clock.h"

#include <memory>

namespace quorbel {

/// The program's clock: real time on the event loop of the thread that makes it, which thereby is
/// the main thread. Needs a QCoreApplication; timers fire while its loop runs, within a
/// millisecond, and a repeating one keeps its rate on average.
class MainLoopClock final : public Clock {
  public:
    MainLoopClock();
    ~MainLoopClock() override;

    [[nodiscard]] double now() const override;
    TimerID after(double seconds, Task task) override;
    TimerID every(double seconds, Task task) override;
    void cancel(TimerID timer) override;
    void post(Task task) override;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
