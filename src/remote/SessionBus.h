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

} // namespace quorbel
