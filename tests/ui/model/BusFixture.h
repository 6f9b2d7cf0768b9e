#pragma once

#include "settings/state/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QProcess>

namespace quorbel::testing {

/// Programs on a session bus of their own, which can start the program.
class BusTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(service.parent_path());
        write(service, "[D-BUS Service]\nName=com.quorbel.Ostrafine\nExec=/bin/true\n");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_DATA_HOME", QString::fromStdString(folder.path().string()));
        daemon_.setProcessEnvironment(environment);
        daemon_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        if (!daemon_.waitForStarted())
            GTEST_SKIP() << "dbus-daemon is not installed";
        ASSERT_TRUE(daemon_.waitForReadyRead(10000));
        address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    }
    ~BusTest() override {
        for (const char *program : {"program", "second", "desktop"})
            QDBusConnection::disconnectFromBus(program + address_);
        daemon_.kill();
        daemon_.waitForFinished();
    }

    /// The connection of the "program", a "second" one or the "desktop".
    [[nodiscard]] QDBusConnection connection(const QString &of) const {
        return QDBusConnection::connectToBus(address_, of + address_);
    }
    /// Runs the event loop until `condition`, ten seconds at most.
    template <typename Condition> [[nodiscard]] static bool soon(const Condition &condition) {
        QElapsedTimer timer;
        for (timer.start(); !condition() && timer.elapsed() < 10000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        return condition();
    }

    const TemporaryFolder folder;
    const std::filesystem::path service =
        folder.path() / "dbus-1/services/com.quorbel.Ostrafine.service";

  private:
    int count_ = 1;
    char name_[5] = "test";
    char *arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
    QProcess daemon_;
    QString address_;
};

} // namespace quorbel::testing
