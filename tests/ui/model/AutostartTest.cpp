#include "ui/app/Autostart.h"

#include "platform/threads/MainLoopClock.h"
#include "platform/threads/ManualClock.h"
#include "ui/app/AutostartPortal.h"
#include "ui/app/SessionMemory.h"
#include "ui/app/TrayArrival.h"
#include "ui/model/BusFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace quorbel::testing {
namespace {

using ::testing::HasSubstr;

bool isThere(const std::string &program) { return program == "/opt/it" || program == "it"; }

TEST(AutostartEntryTest, IsOnWhereTheDesktopWouldRunIt) {
    const std::string own = AutostartEntry::running("/opt/it").text();
    const struct {
        std::string text;
        bool isOn;
    } cases[] = {
        {own, true},
        {AutostartEntry::running("/gone/it").text(), false}, // by TryExec
        {own + "Hidden=true\n", false},
        {own + "Hidden=false\n", true},
        {own + "Hidden = true \r\n", false},
        {own + "Hidden=true\nHidden=false\n", true}, // the last one counts
        {own + "#Hidden=true\n[Desktop Action x]\nHidden=true\n", true},
        {own + "X-GNOME-Autostart-enabled=false", false},
        {own + "X-GNOME-Autostart-enabled=true", true},
        {own + "OnlyShowIn=KDE;\n", false},
        {own + "OnlyShowIn=KDE;sway;\n", true},
        {own + "NotShowIn=sway\n", false},
        {"[Desktop Entry]\nType=Application\nExec=it\n", true},
        {"[Desktop Entry]\nType=Application\n", false},
        {"Exec=it\n", false},
        {"", false},
    };
    for (const auto &each : cases)
        EXPECT_EQ(AutostartEntry(each.text).isOn("wlroots:sway", isThere), each.isOn) << each.text;
}

TEST(AutostartEntryTest, OnlyItsSwitchesChangeUnlessItRunsNothing) {
    const AutostartEntry own = AutostartEntry::running("/opt/it");
    const std::string edited = "# mine\r\n[Desktop Entry]\r\nName=Loud\r\nExec=it --odd\r\n"
                               "Hidden=false\r\n\r\n[Other]\r\nHidden=maybe\r\n";
    AutostartEntry entry(edited);
    entry.switchOff();
    std::string off = edited;
    off.replace(off.find("Hidden=false"), 12, "Hidden=true");
    EXPECT_EQ(entry.text(), off);
    entry.switchOn(own, isThere);
    EXPECT_EQ(entry.text(), edited);

    for (const std::string text :
         {"", "[Desktop Entry]", "[Desktop Entry]\nHidden=true\nExec=", "[Other]\nExec=it\n",
          "[Desktop Entry]\nExec=x\nTryExec=/gone"}) {
        AutostartEntry broken(text);
        broken.switchOff();
        EXPECT_FALSE(broken.isOn("", isThere)) << broken.text();
        broken.switchOn(own, isThere);
        EXPECT_TRUE(broken.isOn("", isThere)) << broken.text();
    }
    EXPECT_THAT(AutostartEntry::running(R"(/a b/100%/"x"\y)").text(),
                HasSubstr("Exec=\"/a b/100%%/\\\\\"x\\\\\"\\\\\\\\y\" ctl resume\n"));
}

/// The switch for starting at login.
class AutostartTest : public BusTest {
  protected:
    [[nodiscard]] AutostartPlaces places() const {
        return {.user = entry,
                .system = {folder.path() / "xdg/com.quorbel.Ostrafine.desktop"},
                .desktops = "XFCE",
                .commandProgram = "/bin/true"};
    }
    [[nodiscard]] ::testing::AssertionResult soonIs(bool isOn, bool isOffered = true,
                                                    const std::string &note = "") const {
        const auto holds = [&] {
            return model.on() == isOn && model.offered() == isOffered &&
                   (note.empty() ? model.note().isEmpty()
                                 : model.note().contains(QString::fromStdString(note)));
        };
        return (soon(holds) ? ::testing::AssertionSuccess() : ::testing::AssertionFailure())
               << "on " << model.on() << ", offered " << model.offered() << ": "
               << model.note().toStdString();
    }

    const std::filesystem::path entry = folder.path() / "autostart/com.quorbel.Ostrafine.desktop";
    MainLoopClock clock;
    StartAtLoginModel model{nullptr};
};

TEST_F(AutostartTest, ShowsAndWritesTheEntryInTheUsersFolder) {
    const AutostartFile autostart(model, connection("program"), clock, places());
    EXPECT_TRUE(soonIs(false));
    model.toggle();
    EXPECT_TRUE(soonIs(true));
    EXPECT_EQ(contentOf(entry), AutostartEntry::running("/bin/true").text());
    model.toggle();
    EXPECT_TRUE(soonIs(false));
    EXPECT_FALSE(exists(entry)) << "its own is removed";

    const std::string foreign = "[Desktop Entry]\nExec=true\nNote=kept\n";
    write(entry, foreign);
    EXPECT_TRUE(soonIs(true)) << "changed from outside";
    model.toggle();
    EXPECT_TRUE(soonIs(false));
    EXPECT_THAT(contentOf(entry), HasSubstr("Note=kept\n"));
    write(entry, foreign + "OnlyShowIn=KDE;\n");
    model.toggle();
    EXPECT_TRUE(soonIs(false, true, "OnlyShowIn"));

    std::filesystem::remove(entry);
    std::filesystem::create_directory(places().system[0].parent_path());
    write(places().system[0], foreign);
    EXPECT_TRUE(soonIs(true)) << "an entry for every user";
    model.toggle();
    EXPECT_TRUE(soonIs(false));
    EXPECT_THAT(contentOf(entry), HasSubstr("Hidden=true\n"));

    std::filesystem::remove(places().system[0]);
    std::filesystem::remove(entry);
    std::filesystem::create_symlink("/proc/nowhere/file", entry); // not even root can write there
    EXPECT_TRUE(soonIs(false));
    model.toggle();
    EXPECT_TRUE(soonIs(false, true, entry.string() + " could not be written: "));
    std::filesystem::remove_all(entry.parent_path());
    write(entry.parent_path(), "a file in the folder's place");
    EXPECT_TRUE(soonIs(false, false, entry.string() + ": Not a directory"));
}

TEST_F(AutostartTest, SaysWhyItIsNotOffered) {
    std::filesystem::remove(service);
    connection("program").call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"));
    {
        const AutostartFile autostart(model, connection("program"), clock, places());
        EXPECT_TRUE(soonIs(false, false, "no service com.quorbel.Ostrafine"));
    }
    AutostartPlaces withoutCommand = places();
    withoutCommand.commandProgram = "/nowhere/ostrafine-cli";
    const AutostartFile autostart(model, connection("program"), clock, withoutCommand);
    EXPECT_TRUE(soonIs(false, false, "/nowhere/ostrafine-cli is missing"));
}

/// A desktop portal that answers immediately.
class Portal final : public QDBusVirtualObject {
  public:
    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        asked = qdbus_cast<QVariantMap>(message.arguments().value(1));
        QString sender = message.service().mid(1);
        const QString path = "/org/freedesktop/portal/desktop/request/" + sender.replace('.', '_') +
                             '/' + asked["handle_token"].toString();
        (void)bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
        QDBusMessage response = QDBusMessage::createTargetedSignal(
            message.service(), path, "org.freedesktop.portal.Request", "Response");
        response << answer
                 << QVariantMap{{"autostart", isPermitted && asked["autostart"].toBool()}};
        return bus.send(response);
    }

    uint answer = 0;
    bool isPermitted = true;
    QVariantMap asked;
};

TEST_F(AutostartTest, AsksThePortalInASandboxAndRemembersItsAnswer) {
    QDBusConnection desktop = connection("desktop");
    Portal portal;
    desktop.registerVirtualObject("/org/freedesktop/portal/desktop", &portal);
    const std::string settings = folder.path() / "state.json";
    {
        SessionMemory memory(settings);
        const AutostartPortal autostart(model, memory, connection("program"));
        model.toggle();
        EXPECT_TRUE(soonIs(false, true, "portal cannot be asked")) << "there is none";
        ASSERT_TRUE(desktop.registerService("org.freedesktop.portal.Desktop"));
        portal.isPermitted = false;
        model.toggle();
        EXPECT_TRUE(soonIs(false, true, "does not permit"));
        portal.isPermitted = true;
        model.toggle();
        EXPECT_TRUE(soonIs(true));
        EXPECT_EQ(portal.asked["commandline"].toStringList().join(' '), "ostrafine-cli ctl resume");
    }
    SessionMemory memory(settings);
    const AutostartPortal autostart(model, memory, connection("program"));
    EXPECT_TRUE(soonIs(true));
    model.toggle();
    EXPECT_TRUE(soonIs(false));
}

/// The tray's service on the session bus, with or without a host that shows it.
class Tray final : public QDBusVirtualObject {
  public:
    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        ++asked;
        return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(isShown))));
    }

    bool isShown = false;
    int asked = 0;
};

TEST_F(AutostartTest, ATrayIsAwaitedAtLoginButNotForEver) {
    QDBusConnection desktop = connection("desktop");
    Tray tray;
    desktop.registerVirtualObject("/StatusNotifierWatcher", &tray);
    ASSERT_TRUE(desktop.registerService("org.kde.StatusNotifierWatcher"));
    ManualClock manual;
    int due = 0;
    {
        const TrayArrival arrival(connection("program"), manual, 10.0, [&] { ++due; });
        EXPECT_TRUE(soon([&] { return tray.asked == 1; }));
        manual.advance(0.5);
        EXPECT_TRUE(soon([&] { return tray.asked == 2; })) << "and the first answer has come";
        EXPECT_EQ(due, 0);
        tray.isShown = true;
        manual.advance(0.5);
        EXPECT_TRUE(soon([&] { return due == 1; }));
        manual.advance(20.0);
        EXPECT_EQ(due, 1);
    }
    ASSERT_TRUE(desktop.unregisterService("org.kde.StatusNotifierWatcher"));
    const TrayArrival arrival(connection("program"), manual, 10.0, [&] { ++due; });
    manual.advance(9.9);
    EXPECT_EQ(due, 1);
    manual.advance(0.2);
    EXPECT_EQ(due, 2);
}

} // namespace
} // namespace quorbel::testing
