#pragma once

#include "platform/threads/Timer.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace quorbel {

/// Tells when to create the tray item. Qt looks for a tray on the session bus only once, with the
/// first item, but at login the desktop may announce its tray later. [main]
class TrayArrival final : public QObject {
    Q_OBJECT

  public:
    /// Calls `due` once, when a tray is announced on the bus or after `patienceSeconds`. The clock
    /// must outlive it.
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
