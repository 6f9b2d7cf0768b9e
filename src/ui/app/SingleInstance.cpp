#include "ui/app/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QEventLoop>
#include <QHash>
#include <QTimer>

#include <unistd.h>

namespace quorbel {

namespace {

const QString service = QStringLiteral("com.quorbel.Ostrafine");
const QString path = QStringLiteral("/com/quorbel/Ostrafine");
const QString interface = QStringLiteral("org.freedesktop.Application");

} // namespace

SingleInstance::SingleInstance(const QDBusConnection &bus) : bus_(bus) {
    if (!bus_.isConnected())
        return;
    new ApplicationAdaptor(*this); // a child of ours
    bus_.registerObject(path, this, QDBusConnection::ExportAdaptors);
    const auto reply =
        bus_.interface()->registerService(service, QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    // A bus that fails to answer is as good as none.
    isFirst_ = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!isFirst_)
        bus_.unregisterObject(path);
}

SingleInstance::~SingleInstance() {
    if (!isFirst_ || !bus_.isConnected())
        return;
    bus_.unregisterObject(path);
    bus_.interface()->unregisterService(service);
}

bool SingleInstance::raiseFirst() const {
    constexpr int timeoutMilliseconds = 5000;
    QVariantMap platformData;
    for (const auto &[key, variable] : {std::pair("activation-token", "XDG_ACTIVATION_TOKEN"),
                                        std::pair("desktop-startup-id", "DESKTOP_STARTUP_ID")})
        if (qEnvironmentVariableIsSet(variable))
            platformData[QString::fromLatin1(key)] = qEnvironmentVariable(variable);
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Activate"));
    call << platformData;
    return bus_.call(call, QDBus::Block, timeoutMilliseconds).type() == QDBusMessage::ReplyMessage;
}

std::optional<DesktopRequest> SingleInstance::waitForRequest(int milliseconds) const {
    std::optional<DesktopRequest> first;
    QEventLoop loop;
    connect(this, &SingleInstance::requested, &loop, [&](const DesktopRequest &request) {
        first = request;
        loop.quit();
    });
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    return first;
}

bool wasStartedByBus() {
    return qEnvironmentVariableIsSet("DBUS_STARTER_BUS_TYPE") && isatty(STDIN_FILENO) == 0;
}

void ApplicationAdaptor::Activate(const QVariantMap &platformData) {
    Q_EMIT instance_.requested(
        {.kind = DesktopRequest::Kind::show,
         .activationToken = platformData.value("activation-token").toString()});
}

void ApplicationAdaptor::Open(const QStringList &, const QVariantMap &platformData) {
    Activate(platformData);
}

void ApplicationAdaptor::ActivateAction(const QString &action, const QVariantList &,
                                        const QVariantMap &platformData) {
    using Kind = DesktopRequest::Kind;
    static const QHash<QString, Kind> kinds{
        {QStringLiteral("Start"), Kind::startProcessing},
        {QStringLiteral("Stop"), Kind::stopProcessing},
        {QStringLiteral("NextPreset"), Kind::nextPreset},
        {QStringLiteral("PreviousPreset"), Kind::previousPreset}};
    if (const auto kind = kinds.find(action); kind != kinds.end())
        Q_EMIT instance_.requested({.kind = *kind});
    else
        Activate(platformData);
}

} // namespace quorbel
