#include "ui/app/SingleInstance.h"

#include "ui/model/BusFixture.h"

#include <QDBusMessage>

#include <memory>
#include <thread>

namespace quorbel::testing {
namespace {

using SingleInstanceTest = BusTest;

TEST_F(SingleInstanceTest, TheSecondRaisesTheFirstAndAfterItsEndIsFirstItself) {
    auto first = std::make_unique<SingleInstance>(connection("program"));
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
    EXPECT_TRUE(soon([&] { return raised > 0; }));
    second.join();
    EXPECT_FALSE(isFirst);
    EXPECT_TRUE(answered);
    EXPECT_EQ(raised, 1);

    first.reset();
    EXPECT_TRUE(SingleInstance(connection("program")).isFirst());
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
} // namespace quorbel::testing
