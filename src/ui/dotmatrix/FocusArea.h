#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// An item that takes the keyboard's focus and knows whether to show it: after the keyboard gave
/// it, not after the pointer did. The template for controls of the toolkit would do the same, but
/// insists on a role of its own towards assistive technology.
///
/// The wheel turns it only while it has the focus; else the page below scrolls.
class FocusArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool visualFocus READ visualFocus NOTIFY visualFocusChanged FINAL)

  public:
    explicit FocusArea(QQuickItem *parent = nullptr);

    [[nodiscard]] bool visualFocus() const { return visualFocus_; }

    /// Whether the wheel's next turns are for this item, if it has the focus. Not those that have
    /// scrolled it below the pointer.
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
    int turned_ = 0; ///< less than a notch, in eighths of a degree
};

} // namespace quorbel
