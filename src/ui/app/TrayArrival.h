#pragma once

#include "platform/threads/Timer.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace quorbel {

/// Tells when to make the tray's item. Qt looks for the tray of the session bus once, with the
/// first item, and never again. At login the desktop may announce its tray after the start of this
/// program. [main]
class TrayArrival final : public QObject {
    Q_OBJECT

  public:
    /// Calls `due` once: as soon as a tray is announced on the bus, or after `patienceSeconds`. The
    /// clock must outlive it.
    TrayArrival(const QDBusConnection &bus, Clock &clock, double patienceSeconds,
                std::function<void()> due);

  private:
    void look();
    void end();

    QDBusConnection bus_;
    std::function<void()> due_; ///< empty once called
    Timer looks_;
    Timer deadline_;
};

} // namespace quorbel
