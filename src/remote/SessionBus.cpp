#include "remote/SessionBus.h"

#include <sys/stat.h>

namespace quorbel {

QString sessionBusAddress() {
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address.contains(QLatin1String("autolaunch:")) ? QString() : address;
    const QByteArray runtimeFolder = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray path = runtimeFolder + "/bus";
    struct stat file = {};
    if (runtimeFolder.isEmpty() || stat(path.constData(), &file) != 0 || !S_ISSOCK(file.st_mode))
        return {};
    return QStringLiteral("unix:path=") + QString::fromLatin1(path.toPercentEncoding("/-_.\\"));
}

QDBusConnection connectToSessionBus(const QString &name) {
    const QString address = sessionBusAddress();
    return address.isEmpty() ? QDBusConnection(name) : QDBusConnection::connectToBus(address, name);
}

} // namespace quorbel
