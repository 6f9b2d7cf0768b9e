#pragma once

#include "ui/logic/NumberFormat.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Numbers as the screens show them (ui/logic/NumberFormat.h), for QML.
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
    [[nodiscard]] Q_INVOKABLE QString signedDecibels(double value) const {
        return QString::fromStdString(gainText(value));
    }
};

} // namespace quorbel
