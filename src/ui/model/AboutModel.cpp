#include "ui/model/AboutModel.h"

#include "platform/core/Version.h"

#include <QStringList>
#include <QSysInfo>

namespace quorbel {

QString AboutModel::version() { return QString::fromUtf8(quorbel::version); }

QString AboutModel::report() const {
    QStringList lines = {"Ostrafine " + version(), QString("Qt ") + qVersion(), soundLibrary_,
                         QSysInfo::prettyProductName() + ", " + QSysInfo::kernelType() + ' ' +
                             QSysInfo::kernelVersion() + ", " + QSysInfo::currentCpuArchitecture()};
    lines.removeAll(QString());
    return lines.join('\n');
}

void AboutModel::setSoundLibrary(const QString &library) {
    soundLibrary_ = library;
    Q_EMIT reportChanged();
}

} // namespace quorbel
