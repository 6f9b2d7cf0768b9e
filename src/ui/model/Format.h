#pragma once

#include "ui/logic/NumberFormat.h"
#include "ui/logic/Stages.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Number formats of the screens (ui/logic/NumberFormat.h) for QML.
class Format final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

  public:
    [[nodiscard]] Q_INVOKABLE QString fixed(double value, int decimals) const {
        return QString::fromStdString(fixedText(value, decimals));
    }
    [[nodiscard]] Q_INVOKABLE QString hertz(double value) const {
        return QString::fromStdString(frequencyText(value));
    }
    /// "31.5", "250", "16k"
    [[nodiscard]] Q_INVOKABLE QString shortHertz(double value) const {
        return QString::fromStdString(frequencyLabel(static_cast<float>(value)));
    }
    /// Label of a mark at a whole number of dB: "+12", "0 dB", "-6".
    [[nodiscard]] Q_INVOKABLE QString gainMark(double value) const {
        return value == 0.0 ? QStringLiteral("0 dB") : QString::fromStdString(signedText(value, 0));
    }
    [[nodiscard]] Q_INVOKABLE QString signedDecibels(double value) const {
        return QString::fromStdString(gainText(value));
    }
};

/// Help texts of the stages (ui/logic/Stages.h) for QML.
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
