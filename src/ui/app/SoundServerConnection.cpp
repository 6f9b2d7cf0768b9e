#include "ui/app/SoundServerConnection.h"

#include "platform/hardware/SystemHardware.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <cstdio>
#include <system_error>

namespace quorbel {

namespace {

QString complaint(Status status) {
    return QCoreApplication::translate("quorbel::SoundServerConnection",
                                       "No PipeWire sound server answers (%1).")
        .arg(QString::fromStdString(std::generic_category().message(-status)));
}

bool asksForAnotherTry(Status status) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Ostrafine"), complaint(status),
                    QMessageBox::Retry | QMessageBox::Close);
    box.setInformativeText(QCoreApplication::translate(
        "quorbel::SoundServerConnection",
        "Start one with: systemctl --user start pipewire wireplumber pipewire-pulse"));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return box.exec() == QMessageBox::Retry;
}

} // namespace

std::unique_ptr<AudioHardware> connectToSoundServer(WithoutServer otherwise) {
    for (;;) {
        Status status = statusOK;
        auto hardware = makeSystemHardware(status);
        if (hardware)
            return hardware;
        if (otherwise == WithoutServer::complain)
            std::fprintf(stderr, "ostrafine: %s\n", qPrintable(complaint(status)));
        if (otherwise == WithoutServer::complain || !asksForAnotherTry(status))
            return nullptr;
    }
}

} // namespace quorbel
