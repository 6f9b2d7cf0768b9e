#pragma once

#include "ui/logic/StageHelp.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// What the screens say of the stages (ui/logic/StageHelp.h), for QML.
class StageTexts final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

  public:
    [[nodiscard]] Q_INVOKABLE QString help(const QString &stage) const {
        return QString::fromUtf8(stageHelp(stage.toStdString()));
    }
};

} // namespace quorbel
