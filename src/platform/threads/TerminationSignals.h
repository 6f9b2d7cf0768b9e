#pragma once

#include <memory>

class QSocketNotifier;

namespace quorbel {

/// Makes SIGINT, SIGTERM and SIGHUP readable, so the program can restore everything before it ends.
/// Blocks them to the end: a second Ctrl-C cannot interrupt the restoration. The signals end the
/// program at once if the system does not support this. [main]
class TerminationSignals {
  public:
    /// Constructed before any thread starts, because threads inherit the signal mask.
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

    /// True once a signal has arrived. Does not wait.
    [[nodiscard]] bool received();

    /// Makes any signal, including a pending one, end the application's event loop.
    void endEventLoop();

  private:
    int descriptor_ = -1;
    bool received_ = false;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace quorbel
