#include "ui/app/AutostartPortal.h"

#include "ui/app/SessionMemory.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

namespace quorbel {

AutostartPortal::AutostartPortal(StartAtLoginModel &model, SessionMemory &memory,
                                 const QDBusConnection &bus)
    : model_(model), memory_(memory), bus_(bus) {
    connect(&model_, &StartAtLoginModel::requested, this, &AutostartPortal::request);
    show();
}

void AutostartPortal::request(bool on) {
    if (isAsking_) {
        show(tr("The desktop has not answered yet."));
        return;
    }
    // Connects before the call, to miss no response: the token fixes the path (XDG Desktop Portal).
    const QString token = QStringLiteral("ostrafine%1").arg(++requests_);
    QString sender = bus_.baseService().mid(1);
    sender.replace('.', '_');
    path_ = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
    const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
    bus_.connect(portal, path_, QStringLiteral("org.freedesktop.portal.Request"),
                 QStringLiteral("Response"), this, SLOT(takeResponse(uint, QVariantMap)));
    QDBusMessage call = QDBusMessage::createMethodCall(
        portal, QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Background"), QStringLiteral("RequestBackground"));
    call << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("reason"), tr("Continue processing the sound after login")},
                        {QStringLiteral("autostart"), on},
                        {QStringLiteral("commandline"),
                         QStringList{QStringLiteral("ostrafine-cli"), QStringLiteral("ctl"),
                                     QStringLiteral("resume")}},
                        {QStringLiteral("dbus-activatable"), false}};
    isAsking_ = true;
    isAskedOn_ = on;
    show();
    auto *reply = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        if (!reply->isError() || !isAsking_)
            return;
        isAsking_ = false;
        show(tr("The desktop's portal cannot be asked: %1").arg(reply->error().message()));
    });
}

void AutostartPortal::takeResponse(uint response, const QVariantMap &results) {
    constexpr uint success = 0;
    isAsking_ = false;
    bus_.disconnect(QStringLiteral("org.freedesktop.portal.Desktop"), path_,
                    QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
                    this, SLOT(takeResponse(uint, QVariantMap)));
    const bool isOn = results.value(QStringLiteral("autostart")).toBool();
    if (response == success)
        memory_.noteStartsAtLogin(isOn);
    const bool isDone = response == success && isOn == isAskedOn_;
    show(isDone       ? QString()
         : isAskedOn_ ? tr("The desktop does not permit that Ostrafine starts at login.")
                      : tr("The desktop still starts Ostrafine at login."));
}

void AutostartPortal::show(const QString &failure) {
    const QString waiting = isAsking_ ? tr("Waiting for the desktop's permission.") : QString();
    model_.setState({.isOn = memory_.startsAtLogin(),
                     .isOffered = true,
                     .note = failure.isEmpty() ? waiting : failure});
}

} // namespace quorbel
