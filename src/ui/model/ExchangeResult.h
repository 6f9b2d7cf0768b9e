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
    Q_PROPERTY(QStringList skipped MEMBER skipped)
    Q_PROPERTY(QStringList limited MEMBER limited)

  public:
    bool ok = false;
    QString message;     ///< what was done, or why nothing was
    QStringList skipped; ///< lines that have no effect, each with the reason
    QStringList limited; ///< lines that are played otherwise than written
};

} // namespace quorbel
