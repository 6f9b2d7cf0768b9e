#include "ui/app/SingleInstance.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QProcess>

#include <memory>
#include <thread>

namespace quorbel {
namespace {

/// A session bus of its own, and programs on it.
class SingleInstanceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bus_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        if (!bus_.waitForStarted())
            GTEST_SKIP() << "dbus-daemon is not installed";
        ASSERT_TRUE(bus_.waitForReadyRead(10000));
        address_ = QString::fromUtf8(bus_.readLine()).trimmed();
    }
    ~SingleInstanceTest() override {
        bus_.kill();
        bus_.waitForFinished();
    }

    [[nodiscard]] QDBusConnection connection(const QString &program) const {
        return QDBusConnection::connectToBus(address_, program);
    }
    /// Runs the event loop until `condition` or, at the latest, for ten seconds.
    template <typename Condition> static bool waitFor(const Condition &condition) {
        QElapsedTimer timer;
        for (timer.start(); !condition() && timer.elapsed() < 10000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        return condition();
    }

  private:
    int count_ = 1;
    char name_[5] = "test";
    char *arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
    QProcess bus_;
    QString address_;
};

TEST_F(SingleInstanceTest, TheSecondRaisesTheFirstAndAfterItsEndIsFirstItself) {
    auto first = std::make_unique<SingleInstance>(connection("first"));
    EXPECT_TRUE(first->isFirst());
    int raised = 0;
    QObject::connect(first.get(), &SingleInstance::requested, first.get(),
                     [&](const DesktopRequest &request) {
                         raised += request.kind == DesktopRequest::Kind::show ? 1 : 100;
                     });

    bool answered = false;
    bool isFirst = true;
    std::thread second([&] {
        const SingleInstance other(connection("second"));
        isFirst = other.isFirst();
        answered = other.raiseFirst();
    });
    EXPECT_TRUE(waitFor([&] { return raised > 0; }));
    second.join();
    EXPECT_FALSE(isFirst);
    EXPECT_TRUE(answered);
    EXPECT_EQ(raised, 1);

    first.reset();
    EXPECT_TRUE(SingleInstance(connection("third")).isFirst());
}

TEST_F(SingleInstanceTest, TheDesktopEntrysActionsAreAnswered) {
    const SingleInstance instance(connection("program"));
    const auto answer = [&](const QString &action) {
        QDBusMessage call =
            QDBusMessage::createMethodCall("com.quorbel.Ostrafine", "/com/quorbel/Ostrafine",
                                           "org.freedesktop.Application", "ActivateAction");
        call << action << QVariantList() << QVariantMap{{"activation-token", "a token"}};
        connection("desktop").send(call);
        return instance.waitForRequest(10000);
    };
    EXPECT_EQ(answer("Start").value().kind, DesktopRequest::Kind::startProcessing);
    EXPECT_EQ(answer("Stop").value().kind, DesktopRequest::Kind::stopProcessing);
    EXPECT_EQ(answer("NextPreset").value().kind, DesktopRequest::Kind::nextPreset);
    EXPECT_EQ(answer("PreviousPreset").value().kind, DesktopRequest::Kind::previousPreset);
    EXPECT_EQ(answer("new-window").value().kind, DesktopRequest::Kind::show);
    EXPECT_EQ(answer("new-window")->activationToken, "a token");
    EXPECT_FALSE(instance.waitForRequest(0)) << "no request was made";
}

} // namespace
} // namespace quorbel
