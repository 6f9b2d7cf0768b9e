#include "ui/dotmatrix/Appearance.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

const auto portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto portalInterface = QStringLiteral("org.freedesktop.portal.Settings");

const auto appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const auto gnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const auto gnomeAccessGroup = QStringLiteral("org.gnome.desktop.a11y.interface");
const auto plasmaGroup = QStringLiteral("org.kde.kdeglobals.KDE");

// The portal's older call, `Read`, wraps values twice.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

Appearance &Appearance::instance() {
    static Appearance appearance;
    return appearance;
}

void Appearance::setHighContrast(bool on) {
    if (highContrast_ != on) {
        highContrast_ = on;
        Q_EMIT changed();
    }
}

void Appearance::setReducedMotion(bool on) {
    if (reducedMotion_ != on) {
        reducedMotion_ = on;
        Q_EMIT changed();
    }
}

void Appearance::setTextFactor(double factor) {
    textFactor_ = factor;
    updateTextScale();
}

void Appearance::updateTextScale() {
    const QFont font = QGuiApplication::font();
    const auto *screen = QGuiApplication::primaryScreen();
    const double dotsPerInch = screen != nullptr ? screen->logicalDotsPerInchY() : 96;
    const double pixels =
        font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * dotsPerInch / 72;
    constexpr double designed = 10 * 96 / 72.0; // 10 points at 96 dots per inch
    const bool isCounted = !QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
    const double wanted = pixels / designed * (isCounted ? 1 : textFactor_);
    const double scale = std::clamp(std::round(wanted * 100) / 100, 1.0, 2.0);
    if (textScale_ != scale) {
        textScale_ = scale;
        Q_EMIT changed();
    }
}

bool Appearance::eventFilter(QObject *watched, QEvent *event) {
    if (watched == qGuiApp && event->type() == QEvent::ApplicationFontChange)
        updateTextScale();
    return QObject::eventFilter(watched, event);
}

void Appearance::followDesktop() {
    if (following_)
        return;
    following_ = true;
    qGuiApp->installEventFilter(this);
    updateTextScale();
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portalService, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    const QList<std::pair<QString, QString>> keys = {
        {appearanceGroup, QStringLiteral("contrast")},
        {appearanceGroup, QStringLiteral("reduced-motion")},
        {gnomeGroup, QStringLiteral("enable-animations")},
        {gnomeGroup, QStringLiteral("text-scaling-factor")},
        {gnomeAccessGroup, QStringLiteral("high-contrast")},
        {plasmaGroup, QStringLiteral("AnimationDurationFactor")},
    };
    for (const auto &[group, key] : keys) {
        auto call = QDBusMessage::createMethodCall(portalService, portalPath, portalInterface,
                                                   QStringLiteral("Read"));
        call << group << key;
        auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this, group = group, key = key](QDBusPendingCallWatcher *finished) {
                    const QDBusPendingReply<QDBusVariant> reply = *finished;
                    if (!reply.isError())
                        apply(group, key, reply.value().variant());
                    finished->deleteLater();
                });
    }
}

void Appearance::settingChanged(const QDBusMessage &message) {
    const auto arguments = message.arguments(); // group, key, value
    apply(arguments.value(0).toString(), arguments.value(1).toString(), arguments.value(2));
}

// Each desktop answers only the keys it knows; two keys for one setting agree.
void Appearance::apply(const QString &group, const QString &key, const QVariant &wrapped) {
    const QVariant value = unwrapped(wrapped);
    if (group == appearanceGroup && key == QStringLiteral("contrast"))
        setHighContrast(value.toUInt() == 1);
    else if (group == gnomeAccessGroup && key == QStringLiteral("high-contrast"))
        setHighContrast(value.toBool());
    else if (group == appearanceGroup && key == QStringLiteral("reduced-motion"))
        setReducedMotion(value.toUInt() == 1);
    else if (group == gnomeGroup && key == QStringLiteral("enable-animations"))
        setReducedMotion(!value.toBool());
    else if (group == gnomeGroup && key == QStringLiteral("text-scaling-factor"))
        setTextFactor(value.toDouble());
    else if (group == plasmaGroup && key == QStringLiteral("AnimationDurationFactor"))
        setReducedMotion(value.toString().toDouble() == 0);
}

} // namespace quorbel
