#include "remote/ProgramActivation.h"

#include "remote/SessionBus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QVariantMap>

#include <stdexcept>

namespace quorbel {

void resumeProgram() {
    constexpr int timeoutMilliseconds = 30000; // a session that starts is busy
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
