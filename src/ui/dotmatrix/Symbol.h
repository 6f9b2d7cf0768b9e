#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QImage>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// One symbol of the program's own set, by name, in one colour.
class Symbol : public quorbel::DotItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor RESET resetColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(double size READ size WRITE setSize NOTIFY sizeChanged FINAL)

  public:
    explicit Symbol(QQuickItem *parent = nullptr);

    /// Name as in `ui/symbols`; empty: shows nothing.
    [[nodiscard]] QString name() const { return name_; }
    void setName(const QString &name);
    /// Defaults to ink.
    [[nodiscard]] QColor color() const;
    void setColor(const QColor &color);
    void resetColor();
    /// Edge length in pixels at normal text size; the symbols are designed for 16.
    [[nodiscard]] double size() const { return size_; }
    void setSize(double size);

  Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

  protected:
    void paintDots(DotPainter &painter, QSize size) override;

  private:
    void measure();

    QString name_;
    QColor color_;
    double size_ = 16;
};

} // namespace quorbel
