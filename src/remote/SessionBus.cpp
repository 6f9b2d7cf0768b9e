#include "remote/SessionBus.h"

#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <utility>

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

struct SessionBusConnector::Shared {
    std::mutex mutex;
    Clock *clock;                                     ///< null after the connector's end; guarded
    std::function<void(const QDBusConnection &)> use; ///< [main]
};

SessionBusConnector::SessionBusConnector(const QString &name, Clock &clock,
                                         std::function<void(const QDBusConnection &)> use)
    : shared_(std::make_shared<Shared>()) {
    shared_->clock = &clock;
    shared_->use = std::move(use);
    if (sessionBusAddress().isEmpty())
        return;
    // Detached: it ends with the library's patience at the latest.
    std::thread([shared = shared_, name] {
        const QDBusConnection bus = connectToSessionBus(name);
        const std::lock_guard guard(shared->mutex);
        if (bus.isConnected() && shared->clock != nullptr)
            shared->clock->post([weak = std::weak_ptr(shared), bus] {
                if (const auto alive = weak.lock())
                    alive->use(bus);
            });
    }).detach();
}

SessionBusConnector::~SessionBusConnector() {
    const std::lock_guard guard(shared_->mutex);
    shared_->clock = nullptr;
    shared_->use = [](const QDBusConnection &) {};
}

} // namespace quorbel
