#pragma once

namespace quorbel {

/// Turns SIGINT, SIGTERM and SIGHUP into something to read, so that the program ends in its own
/// time with everything put back. Make it before any thread starts: threads inherit what is
/// blocked. [main]
class TerminationSignals {
  public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

    /// Becomes readable when a signal has arrived.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// Whether a signal has arrived, now or before. Does not wait.
    [[nodiscard]] bool received();

  private:
    int descriptor_;
    bool received_ = false;
};

} // namespace quorbel
