#include "ui/app/SoundServerWait.h"

#include "platform/hardware/SystemHardware.h"
#include "platform/threads/Timer.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMessageBox>

#include <cstdio>
#include <system_error>

namespace quorbel {

namespace {

constexpr double serverLookSeconds = 0.25;
constexpr double serverPatienceSeconds = 30.0;

QString missingServerText(Status status) {
    return QCoreApplication::translate("ostrafine", "No PipeWire sound server answers (%1).")
        .arg(QString::fromStdString(std::generic_category().message(-status)));
}

void complainOfMissingServer(Status status) {
    std::fprintf(stderr, "ostrafine: %s\n", qPrintable(missingServerText(status)));
}

std::unique_ptr<QMessageBox> missingServerBox(Status status) {
    auto box = std::make_unique<QMessageBox>(QMessageBox::Warning, QStringLiteral("Ostrafine"),
                                             missingServerText(status),
                                             QMessageBox::Retry | QMessageBox::Close);
    box->setInformativeText(QCoreApplication::translate(
        "ostrafine", "Start one with: systemctl --user start pipewire wireplumber pipewire-pulse"));
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return box;
}

} // namespace

std::unique_ptr<AudioHardware> hardwareOrComplaint() {
    Status status = statusOK;
    auto hardware = makeSystemHardware(status);
    if (!hardware)
        complainOfMissingServer(status);
    return hardware;
}

std::unique_ptr<AudioHardware> hardwareOrQuestion() {
    for (;;) {
        Status status = statusOK;
        if (auto hardware = makeSystemHardware(status))
            return hardware;
        if (missingServerBox(status)->exec() != QMessageBox::Retry)
            return nullptr;
    }
}

std::unique_ptr<AudioHardware> awaitHardware(const SingleInstance &instance, Clock &clock,
                                             std::vector<DesktopRequest> &requests) {
    Status status = statusOK;
    auto hardware = makeSystemHardware(status);
    if (hardware)
        return hardware;
    QEventLoop loop;
    std::unique_ptr<QMessageBox> box;
    const auto look = Timer::repeating(clock, serverLookSeconds, [&] {
        if ((hardware = makeSystemHardware(status)))
            loop.quit();
    });
    auto deadline = Timer::once(clock, serverPatienceSeconds, [&] {
        complainOfMissingServer(status);
        loop.quit();
    });
    QObject::connect(
        &instance, &SingleInstance::requested, &loop, [&](const DesktopRequest &request) {
            requests.push_back(request);
            if (request.kind == DesktopRequest::Kind::stopProcessing)
                loop.quit();
            if (request.kind != DesktopRequest::Kind::show)
                return;
            deadline.invalidate();
            if (!box) {
                box = missingServerBox(status);
                QObject::connect(box.get(), &QMessageBox::finished, &loop, [&](int button) {
                    if (button != QMessageBox::Retry)
                        loop.quit();
                    else
                        box->show(); // until the server answers
                });
            }
            box->show();
            box->raise();
            box->activateWindow();
        });
    loop.exec();
    return hardware;
}

} // namespace quorbel
