#pragma once

#include "platform/threads/Clock.h"

#include <QDBusConnection>
#include <QString>

#include <functional>
#include <memory>

namespace quorbel {

/// Address of the user's session bus; empty if none runs. A bus that would first have to be started
/// counts as none.
[[nodiscard]] QString sessionBusAddress();

// The library waits forever for a bus that does not answer, here and at exit. So a separate thread
// connects, and a program that ends meanwhile exits without the library.

/// Returns a separate connection to that bus, named `name` within this program. Silently not
/// connected if there is no bus or it does not answer within 5 s.
[[nodiscard]] QDBusConnection connectToSessionBus(const QString &name);

/// Connects without blocking the main thread. [main]
class SessionBusConnector {
  public:
    /// Calls `use` once with the connection [main], but never without a bus or after this object's
    /// end. The clock must outlive it.
    SessionBusConnector(const QString &name, Clock &clock,
                        std::function<void(const QDBusConnection &)> use);
    ~SessionBusConnector();
    SessionBusConnector(const SessionBusConnector &) = delete;
    SessionBusConnector &operator=(const SessionBusConnector &) = delete;

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_; ///< shared with the thread that connects
};

/// Names of the window's program on the session bus; D-Bus and desktops start it by them.
namespace activation {
inline const QString service = QStringLiteral("com.quorbel.Ostrafine");
inline const QString path = QStringLiteral("/com/quorbel/Ostrafine");
inline const QString interface = QStringLiteral("org.freedesktop.Application");
/// Action at login; the others are those of the desktop entry.
inline const QString resumeAction = QStringLiteral("Resume");
} // namespace activation

/// Asks the window's program to continue the last run's work; the session bus starts it without a
/// window if needed. Waits up to half a minute for its reply. Needs an application object. Throws
/// std::runtime_error with a line for the user. [main]
void resumeProgram();

} // namespace quorbel
