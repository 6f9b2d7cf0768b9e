#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace quorbel {

/// Ends the event loop on SIGINT, SIGTERM and SIGHUP, as if the user had chosen Quit, so that
/// settings are saved and everyone's sound is put back. A second signal does not cut that short.
/// [main]
class QuitSignals {
  public:
    /// Before any thread is started: threads inherit what is blocked.
    QuitSignals();
    ~QuitSignals();
    QuitSignals(const QuitSignals &) = delete;
    QuitSignals &operator=(const QuitSignals &) = delete;

    /// From now on a signal, also one that has come already, ends the loop of the application.
    void watch();

  private:
    int descriptor_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace quorbel
