#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Text in the dot font: numbers, units and the state word.
class DotText : public quorbel::DotItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(DotTextItem)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    Q_PROPERTY(double dotSize READ dotSize WRITE setDotSize NOTIFY dotSizeChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor RESET resetColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(bool showUnlit READ showUnlit WRITE setShowUnlit NOTIFY showUnlitChanged FINAL)

  public:
    explicit DotText(QQuickItem *parent = nullptr);

    [[nodiscard]] QString text() const { return text_; }
    void setText(const QString &text);

    /// Dot pitch at normal text size; the text is seven of them high.
    [[nodiscard]] double dotSize() const { return dotSize_; }
    void setDotSize(double size);

    /// Defaults to ink.
    [[nodiscard]] QColor color() const;
    void setColor(const QColor &color);
    void resetColor();

    /// Whether unlit dots are visible, as on a display.
    [[nodiscard]] bool showUnlit() const { return showUnlit_; }
    void setShowUnlit(bool show);

  Q_SIGNALS:
    void textChanged();
    void dotSizeChanged();
    void colorChanged();
    void showUnlitChanged();

  protected:
    void paintDots(DotPainter &painter, QSize size) override;

  private:
    void measure();
    [[nodiscard]] double pitch() const; ///< of the dots, at the desktop's text size

    QString text_;
    double dotSize_ = 2;
    QColor color_;
    bool showUnlit_ = false;
};

} // namespace quorbel
