#include "ui/dotmatrix/Appearance.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QElapsedTimer>

#include <functional>
#include <map>

namespace quorbel {
namespace {

/// A settings portal that answers as those of desktops do: the older call wraps its value twice,
/// and an unknown key is an error.
class Portal : public QDBusVirtualObject {
  public:
    std::map<QString, QVariant> values; // by "group key"

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        const auto arguments = message.arguments();
        const auto found =
            values.find(arguments.value(0).toString() + u' ' + arguments.value(1).toString());
        ++asked;
        if (found == values.end()) {
            bus.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.portal.Error.NotFound"), QString()));
        } else {
            const QDBusVariant inner(found->second);
            const QDBusVariant outer(QVariant::fromValue(inner));
            bus.send(message.createReply(QVariant::fromValue(outer)));
        }
        return true;
    }

    int asked = 0;
};

/// Runs the event loop until the condition holds, five seconds at most.
bool comes(const std::function<bool()> &condition) {
    QElapsedTimer timer;
    for (timer.start(); !condition() && timer.elapsed() < 5000;)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return condition();
}

TEST(Appearance, FollowsTheDesktopsPortal) {
    int argc = 1;
    char name[] = "test";
    char *argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
    Portal portal;
    portal.values[QStringLiteral("org.freedesktop.appearance contrast")] = 1U;
    portal.values[QStringLiteral("org.gnome.desktop.interface enable-animations")] = false;

    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
    if (!bus.isConnected() ||
        !bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
        GTEST_SKIP() << "no session bus of its own: run it in dbus-run-session";
    ASSERT_TRUE(bus.registerVirtualObject(path, &portal));

    auto &appearance = Appearance::instance();
    EXPECT_FALSE(appearance.highContrast());
    EXPECT_FALSE(appearance.reducedMotion());
    appearance.followDesktop();
    EXPECT_TRUE(comes([&] { return appearance.highContrast() && appearance.reducedMotion(); }));
    EXPECT_TRUE(comes([&] { return portal.asked >= 5; })); // unknown keys changed nothing

    const auto tell = [&](const char *group, const char *key, const QVariant &value) {
        auto signal =
            QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.portal.Settings"),
                                       QStringLiteral("SettingChanged"));
        signal << QString::fromLatin1(group) << QString::fromLatin1(key)
               << QVariant::fromValue(QDBusVariant(value));
        bus.send(signal);
    };
    tell("org.freedesktop.appearance", "contrast", 0U);
    tell("org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("1"));
    EXPECT_TRUE(comes([&] { return !appearance.highContrast() && !appearance.reducedMotion(); }));
    tell("org.gnome.desktop.a11y.interface", "high-contrast", true);
    tell("org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("0"));
    EXPECT_TRUE(comes([&] { return appearance.highContrast() && appearance.reducedMotion(); }));
}

} // namespace
} // namespace quorbel
