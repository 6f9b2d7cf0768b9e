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

/// A connection of its own to that bus, named `name` within this program. Without a bus it is not
/// connected, and nothing is said.
[[nodiscard]] QDBusConnection connectToSessionBus(const QString &name);

/// Connects in the background: a bus that does not answer keeps the library waiting for 25 s, and
/// the main thread has sound to look after. [main]
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
