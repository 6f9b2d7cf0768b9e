#include "remote/RemoteClient.h"

#include "remote/RemoteInterface.h"
#include "remote/SessionBus.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace quorbel {

namespace {

const QString connectionName = QStringLiteral("ostrafine-remote-client");

/// Unpacks the maps within `properties`.
QVariantMap unpacked(QVariantMap properties) {
    for (QVariant &value : properties)
        if (value.canConvert<QDBusArgument>())
            value = qdbus_cast<QVariantMap>(value);
    return properties;
}

} // namespace

RemoteClient::RemoteClient() : bus_(connectToSessionBus(connectionName)) {
    if (!bus_.isConnected())
        throw NothingToControl("no session bus answers, so no running Ostrafine can be reached");
}

RemoteClient::~RemoteClient() { QDBusConnection::disconnectFromBus(connectionName); }

QVariant RemoteClient::call(const QString &method, const QVariantList &arguments) {
    const QVariantList values = callInterface(remote::interface, method, arguments);
    if (values.isEmpty())
        return {};
    return values[0].userType() == qMetaTypeId<QDBusVariant>()
               ? values[0].value<QDBusVariant>().variant()
               : values[0];
}

QVariantMap RemoteClient::properties() {
    const QVariantList values =
        callInterface(remote::propertiesInterface, QStringLiteral("GetAll"), {remote::interface});
    return values.isEmpty() ? QVariantMap() : unpacked(qdbus_cast<QVariantMap>(values[0]));
}

void RemoteClient::setProperty(const QString &name, const QVariant &value) {
    callInterface(remote::propertiesInterface, QStringLiteral("Set"),
                  {remote::interface, name, QVariant::fromValue(QDBusVariant(value))});
}

void RemoteClient::watch() {
    bus_.connect(remote::service, remote::path, remote::propertiesInterface,
                 QStringLiteral("PropertiesChanged"), this,
                 SLOT(takeChange(QString, QVariantMap, QStringList)));
    auto *watcher = new QDBusServiceWatcher(remote::service, bus_,
                                            QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                Q_EMIT moved(!owner.isEmpty());
            });
}

void RemoteClient::takeChange(const QString &interface, const QVariantMap &properties,
                              const QStringList &) {
    if (interface == remote::interface)
        Q_EMIT changed(unpacked(properties));
}

/// Waits until the library's thread has announced an error that it returned before: a program that
/// ends meanwhile complains on standard error. The answer to another call follows the announcement.
void RemoteClient::settle() {
    constexpr int timeoutMilliseconds = 1000;
    bus_.call(QDBusMessage::createMethodCall(
                  QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                  QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")),
              QDBus::Block, timeoutMilliseconds);
}

QVariantList RemoteClient::callInterface(const QString &interface, const QString &method,
                                         const QVariantList &arguments) {
    constexpr int timeoutMilliseconds = 10000;
    QDBusMessage message =
        QDBusMessage::createMethodCall(remote::service, remote::path, interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    const QDBusMessage reply = bus_.call(message, QDBus::Block, timeoutMilliseconds);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return reply.arguments();
    settle();
    switch (QDBusError(reply).type()) {
    case QDBusError::ServiceUnknown:
        throw NothingToControl("Ostrafine does not run");
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
        throw std::runtime_error("Ostrafine does not answer");
    default:
        if (reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner"))
            throw NothingToControl("Ostrafine does not run");
        throw std::runtime_error(reply.errorMessage().toStdString());
    }
}

} // namespace quorbel
