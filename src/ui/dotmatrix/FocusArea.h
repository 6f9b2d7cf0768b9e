#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// A focusable item that shows its focus only if the keyboard gave it, not the pointer. Qt's
/// control template does the same, but does not let the item choose its accessible role.
///
/// The wheel turns it only while it has the focus; otherwise the page below scrolls.
class FocusArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool visualFocus READ visualFocus NOTIFY visualFocusChanged FINAL)

  public:
    explicit FocusArea(QQuickItem *parent = nullptr);

    [[nodiscard]] bool visualFocus() const { return visualFocus_; }

    /// Whether the focused item takes the wheel. False for turns that began outside the item and
    /// scrolled it under the pointer.
    void setTakesWheel(bool takes) { takesWheel_ = takes; }

  Q_SIGNALS:
    void visualFocusChanged();
    /// By whole notches; upward is positive.
    void wheelTurned(int notches);

  protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

  private:
    void setVisualFocus(bool visual);

    bool visualFocus_ = false;
    bool takesWheel_ = true;
    int turned_ = 0; ///< remainder below a notch, in eighths of a degree
};

} // namespace quorbel
