#include "ui/app/SingleInstance.h"

#include "remote/SessionBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QTimer>

#include <unistd.h>

namespace quorbel {

using namespace activation;

namespace {

/// True if the session bus started this program for a request, which follows. The bus's variables
/// prove nothing: a file manager that the bus has started passes them on to its children.
bool wasStartedByBus() {
    const auto contentOf = [](const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
    };
    // The daemon is the parent until the name is taken. The broker lets systemd start the program,
    // in a unit of its own.
    const QByteArray group = contentOf(QStringLiteral("/proc/self/cgroup"));
    const QByteArray unit = group.mid(group.lastIndexOf('/') + 1);
    return contentOf(QStringLiteral("/proc/%1/comm").arg(getppid())) == "dbus-daemon" ||
           (unit.startsWith("dbus-") && unit.contains(service.toUtf8()));
}

} // namespace

SingleInstance::SingleInstance(const QDBusConnection &bus)
    : bus_(bus), isStartedByBus_(wasStartedByBus()) {
    if (!bus_.isConnected())
        return;
    new ApplicationAdaptor(*this); // owned by this object
    bus_.registerObject(path, this, QDBusConnection::ExportAdaptors);
    const auto reply =
        bus_.interface()->registerService(service, QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    // Treats a bus that does not answer as absent.
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

/// A bus delivers the request together with the name, so it arrives before the reply to a later
/// call, even from a bus that is not recognised.
std::optional<DesktopRequest> SingleInstance::startingRequest() const {
    constexpr int patienceMilliseconds = 5000;
    if (isStartedByBus_)
        return isFirst_ ? waitForRequest(patienceMilliseconds) : std::nullopt;
    if (!isFirst_ || !bus_.isConnected())
        return DesktopRequest{};
    const QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    // Qt holds back requests, but not replies, until the event loop has run: the first reply may
    // overtake a request, the second cannot.
    for (int trip = 0; trip < 2; ++trip) {
        const QDBusPendingCallWatcher answer(bus_.asyncCall(call, patienceMilliseconds));
        QEventLoop loop;
        connect(&answer, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        if (auto request = firstRequestWithin(loop))
            return request;
    }
    return DesktopRequest{};
}

std::optional<DesktopRequest> SingleInstance::waitForRequest(int milliseconds) const {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    return firstRequestWithin(loop);
}

/// Runs the loop until a request arrives or the loop quits.
std::optional<DesktopRequest> SingleInstance::firstRequestWithin(QEventLoop &loop) const {
    std::optional<DesktopRequest> first;
    connect(this, &SingleInstance::requested, &loop, [&](const DesktopRequest &request) {
        if (!first)
            first = request;
        loop.quit();
    });
    loop.exec();
    return first;
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
        {resumeAction, Kind::resume},
        {QStringLiteral("NextPreset"), Kind::nextPreset},
        {QStringLiteral("PreviousPreset"), Kind::previousPreset}};
    if (const auto kind = kinds.find(action); kind != kinds.end())
        Q_EMIT instance_.requested({.kind = *kind});
    else
        Activate(platformData);
}

} // namespace quorbel
