#pragma once

#include "platform/threads/Clock.h"

#include <QDBusConnection>
#include <QString>

#include <functional>
#include <memory>

namespace quorbel {

/// Address of the user's session bus; empty where none runs. A bus that would have to be started
/// counts as none.
[[nodiscard]] QString sessionBusAddress();

// The library waits without end for a bus that does not answer, here and at the end of the program.
// So a thread of its own connects, and a program that ends meanwhile does so without the library.

/// A connection of its own to that bus, named `name` within this program. Not connected where there
/// is no bus or it does not answer within 5 s; nothing is said.
[[nodiscard]] QDBusConnection connectToSessionBus(const QString &name);

/// Connects without keeping the main thread waiting. [main]
class SessionBusConnector {
  public:
    /// `use` is called [main] once, with the connection, and not at all without a bus or after the
    /// end of this object. The clock must outlive it.
    SessionBusConnector(const QString &name, Clock &clock,
                        std::function<void(const QDBusConnection &)> use);
    ~SessionBusConnector();
    SessionBusConnector(const SessionBusConnector &) = delete;
    SessionBusConnector &operator=(const SessionBusConnector &) = delete;

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_; ///< with the thread that connects
};

/// Names of the window's program on the session bus, by which D-Bus and desktops start it.
namespace activation {
inline const QString service = QStringLiteral("com.quorbel.Ostrafine");
inline const QString path = QStringLiteral("/com/quorbel/Ostrafine");
inline const QString interface = QStringLiteral("org.freedesktop.Application");
/// The action of a login; the others are those of the desktop entry.
inline const QString resumeAction = QStringLiteral("Resume");
} // namespace activation

/// Has the session bus start the window's program without a window, if it does not run, and the
/// program continue what the last one did. Waits until it has taken the request, half a minute at
/// most. Needs an application object. Throws std::runtime_error with a line for the user. [main]
void resumeProgram();

} // namespace quorbel
