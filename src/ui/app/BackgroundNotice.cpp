#include "ui/app/BackgroundNotice.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace quorbel {

namespace {

// Desktop Notifications Specification 1.2.
const QString notificationService = QStringLiteral("org.freedesktop.Notifications");
const QString notificationPath = QStringLiteral("/org/freedesktop/Notifications");

QDBusMessage notificationCall(const char *method) {
    return QDBusMessage::createMethodCall(notificationService, notificationPath,
                                          notificationService, QString::fromLatin1(method));
}

} // namespace

BackgroundNotice::BackgroundNotice(const QDBusConnection &bus) : bus_(bus) {
    bus_.connect(notificationService, notificationPath, notificationService,
                 QStringLiteral("ActivationToken"), this, SLOT(takeToken(uint, QString)));
    bus_.connect(notificationService, notificationPath, notificationService,
                 QStringLiteral("ActionInvoked"), this, SLOT(takeAction(uint, QString)));
}

void BackgroundNotice::show(std::function<void(bool)> answered) {
    constexpr int patienceMilliseconds = 3000; // the bus may have to start the service
    constexpr int asTheDesktopLikes = -1;      // display time
    // Contains no names of presets or devices: some desktops parse the text as markup.
    QDBusMessage call = notificationCall("Notify");
    call << QStringLiteral("Ostrafine") << id_ << QStringLiteral("com.quorbel.Ostrafine")
         << tr("Ostrafine still processes the sound")
         << tr("Its window is closed. Start Ostrafine again to show it.")
         << QStringList{QStringLiteral("default"), tr("Show Ostrafine"),
                        QStringLiteral("stop"),    tr("Stop"),
                        QStringLiteral("quit"),    tr("Quit")}
         << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("com.quorbel.Ostrafine")}}
         << asTheDesktopLikes;
    auto *reply = new QDBusPendingCallWatcher(bus_.asyncCall(call, patienceMilliseconds), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this,
            [this, reply, answered = std::move(answered)] {
                reply->deleteLater();
                const QDBusPendingReply<uint> id = *reply;
                id_ = id.isError() ? 0 : id.value();
                answered(id_ != 0);
            });
}

void BackgroundNotice::withdraw() {
    if (id_ == 0)
        return;
    QDBusMessage call = notificationCall("CloseNotification");
    call << std::exchange(id_, 0);
    bus_.send(call);
}

void BackgroundNotice::takeToken(uint id, const QString &token) {
    if (id == id_)
        token_ = token;
}

void BackgroundNotice::takeAction(uint id, const QString &action) {
    if (id != id_ || id_ == 0)
        return;
    const QString token = std::exchange(token_, {});
    if (action == QStringLiteral("stop"))
        Q_EMIT stopRequested();
    else if (action == QStringLiteral("quit"))
        Q_EMIT quitRequested();
    else
        Q_EMIT windowRequested(token);
}

} // namespace quorbel
