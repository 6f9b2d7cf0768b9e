#include "remote/SessionBus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QVariantMap>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <mutex>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
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

namespace {

std::atomic<int> connecting{0};

void endWithoutTheLibrary(int status, void *) {
    if (connecting == 0)
        return;
    std::fflush(nullptr);
    _exit(status);
}

QDBusConnection disconnected() { return QDBusConnection(QStringLiteral("quorbel-disconnected")); }

/// Calls `use` on the thread that connects. Does nothing without a bus.
void connectOnThread(const QString &name, std::function<void(const QDBusConnection &)> use) {
    const QString address = sessionBusAddress();
    if (address.isEmpty())
        return;
    (void)disconnected(); // initialises the library: its exit handler must run after ours
    static const int isRegistered = on_exit(endWithoutTheLibrary, nullptr);
    (void)isRegistered;
    ++connecting;
    std::thread([address, name, use = std::move(use)] {
        use(QDBusConnection::connectToBus(address, name));
        --connecting;
    }).detach();
}

} // namespace

QDBusConnection connectToSessionBus(const QString &name) {
    constexpr std::chrono::seconds patience(5);
    const auto promise = std::make_shared<std::promise<QDBusConnection>>();
    std::future<QDBusConnection> connection = promise->get_future();
    if (sessionBusAddress().isEmpty())
        return disconnected();
    connectOnThread(name, [promise](const QDBusConnection &bus) { promise->set_value(bus); });
    return connection.wait_for(patience) == std::future_status::ready ? connection.get()
                                                                      : disconnected();
}

struct SessionBusConnector::Shared {
    std::mutex mutex;
    Clock *clock = nullptr;                           ///< null after the connector's end; guarded
    std::function<void(const QDBusConnection &)> use; ///< [main]
};

SessionBusConnector::SessionBusConnector(const QString &name, Clock &clock,
                                         std::function<void(const QDBusConnection &)> use)
    : shared_(std::make_shared<Shared>()) {
    shared_->clock = &clock;
    shared_->use = std::move(use);
    connectOnThread(name, [shared = shared_](const QDBusConnection &bus) {
        const std::lock_guard guard(shared->mutex);
        if (bus.isConnected() && shared->clock != nullptr)
            shared->clock->post([weak = std::weak_ptr(shared), bus] {
                if (const auto alive = weak.lock())
                    alive->use(bus);
            });
    });
}

SessionBusConnector::~SessionBusConnector() {
    const std::lock_guard guard(shared_->mutex);
    shared_->clock = nullptr;
    shared_->use = [](const QDBusConnection &) {};
}

void resumeProgram() {
    constexpr int timeoutMilliseconds = 30000; // a starting session is busy
    const QString connectionName = QStringLiteral("ostrafine-activation");
    QDBusConnection bus = connectToSessionBus(connectionName);
    if (!bus.isConnected())
        throw std::runtime_error("no session bus answers, so Ostrafine cannot be started");
    QDBusMessage message =
        QDBusMessage::createMethodCall(activation::service, activation::path, activation::interface,
                                       QStringLiteral("ActivateAction"));
    message << activation::resumeAction << QVariantList() << QVariantMap();
    const QDBusMessage reply = bus.call(message, QDBus::Block, timeoutMilliseconds);
    QDBusConnection::disconnectFromBus(connectionName);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return;
    if (QDBusError(reply).type() == QDBusError::ServiceUnknown)
        throw std::runtime_error("Ostrafine is not installed: the session bus knows no service " +
                                 activation::service.toStdString());
    throw std::runtime_error("Ostrafine could not be started: " +
                             reply.errorMessage().toStdString());
}

} // namespace quorbel
