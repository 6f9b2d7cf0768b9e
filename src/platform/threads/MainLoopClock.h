#pragma once

#include "platform/threads/Clock.h"

#include <memory>

namespace quorbel {

/// Real time on the event loop of the constructing thread, which thereby is the main thread. Needs
/// a QCoreApplication. Timers fire within a millisecond while its loop runs; repeating timers keep
/// their average rate.
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
