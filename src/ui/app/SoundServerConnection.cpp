#include "ui/app/SoundServerConnection.h"

#include "platform/hardware/SystemHardware.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <system_error>

namespace quorbel {

namespace {

bool asksForAnotherTry(Status status) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Ostrafine"),
                    QCoreApplication::translate("quorbel::SoundServerConnection",
                                                "No PipeWire sound server answers (%1).")
                        .arg(QString::fromStdString(std::generic_category().message(-status))),
                    QMessageBox::Retry | QMessageBox::Close);
    box.setInformativeText(QCoreApplication::translate(
        "quorbel::SoundServerConnection",
        "Start one with: systemctl --user start pipewire wireplumber pipewire-pulse"));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return box.exec() == QMessageBox::Retry;
}

} // namespace

std::unique_ptr<AudioHardware> connectToSoundServer() {
    for (;;) {
        Status status = statusOK;
        auto hardware = makeSystemHardware(status);
        if (hardware || !asksForAnotherTry(status))
            return hardware;
    }
}

} // namespace quorbel
