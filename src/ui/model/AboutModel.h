#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// What the program says of itself. [main]
class AboutModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.about is the only one")
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString report READ report NOTIFY reportChanged)

  public:
    explicit AboutModel(QObject *parent) : QObject(parent) {}

    [[nodiscard]] static QString version();
    /// Lines for a bug report: the versions of the program, its libraries and the system.
    [[nodiscard]] QString report() const;

    /// Name and version of the library below the sound hardware, such as "PipeWire 1.4.2".
    void setSoundLibrary(const QString &library);

  Q_SIGNALS:
    void reportChanged();

  private:
    QString soundLibrary_;
};

} // namespace quorbel
