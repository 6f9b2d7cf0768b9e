#pragma once

#include <QDBusConnection>
#include <QString>

namespace quorbel {

/// Address of the user's session bus; empty where none runs. A bus that would have to be started
/// counts as none.
[[nodiscard]] QString sessionBusAddress();

/// A connection of its own to that bus, named `name` within this program. Without a bus it is not
/// connected, and nothing is said.
[[nodiscard]] QDBusConnection connectToSessionBus(const QString &name);

} // namespace quorbel
