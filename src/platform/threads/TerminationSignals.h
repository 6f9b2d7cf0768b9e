#pragma once

#include <memory>

class QSocketNotifier;

namespace quorbel {

/// Turns SIGINT, SIGTERM and SIGHUP into something to read, so that the program ends in its own
/// time, with everything put back. They stay blocked to the end: a second Ctrl-C does not cut that
/// short. Where the system cannot do this, the signals end the program at once. [main]
class TerminationSignals {
  public:
    /// To be made before any thread starts: threads inherit what is blocked.
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

    /// Whether a signal has arrived, now or before. Does not wait.
    [[nodiscard]] bool received();

    /// From now on a signal, also one that has come already, ends the application's event loop.
    void endEventLoop();

  private:
    int descriptor_ = -1;
    bool received_ = false;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace quorbel
