#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// What came of an import or an export, for QML.
struct ExchangeResult {
    Q_GADGET
    QML_VALUE_TYPE(exchangeResult)
    Q_PROPERTY(bool ok MEMBER ok)
    Q_PROPERTY(QString message MEMBER message)
    Q_PROPERTY(QStringList details MEMBER details)

  public:
    bool ok = false;     ///< everything that was asked for has been done
    QString message;     ///< what was done, or why nothing was
    QStringList details; ///< of several files each; lines that were not taken as written, and why
};

} // namespace quorbel
