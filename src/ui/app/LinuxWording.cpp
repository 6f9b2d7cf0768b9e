#include "ui/app/LinuxWording.h"

#include <QDebug>

namespace quorbel {

LinuxWording::LinuxWording(QObject *parent) : QTranslator(parent) {
    if (!load(QStringLiteral(":/quorbel/wording/linux.qm")))
        qWarning("the catalogue of texts for Linux is missing from the program");
}

QString LinuxWording::translate(const char *, const char *text, const char *, int count) const {
    return QTranslator::translate("linux", text, nullptr, count);
}

} // namespace quorbel
