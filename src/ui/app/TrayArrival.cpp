#include "ui/app/TrayArrival.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace quorbel {

namespace {

constexpr double trayLookSeconds = 0.5;

} // namespace

TrayArrival::TrayArrival(const QDBusConnection &bus, Clock &clock, double patienceSeconds,
                         std::function<void()> due)
    : bus_(bus), due_(std::move(due)),
      looks_(Timer::repeating(clock, trayLookSeconds, [this] { look(); })),
      deadline_(Timer::once(clock, patienceSeconds, [this] { end(); })) {
    look();
}

/// Asks, as Qt does, whether any host shows tray items.
void TrayArrival::look() {
    const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcher, QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << watcher << QStringLiteral("IsStatusNotifierHostRegistered");
    call.setAutoStartService(false);
    auto *reply = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        const QDBusPendingReply<QDBusVariant> isShown = *reply;
        if (!isShown.isError() && isShown.value().variant().toBool())
            end();
    });
}

void TrayArrival::end() {
    looks_.invalidate();
    deadline_.invalidate();
    if (const auto due = std::exchange(due_, {}))
        due();
}

} // namespace quorbel
