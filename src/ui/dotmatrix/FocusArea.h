#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// An item that takes the keyboard's focus and knows whether to show it: after the keyboard gave
/// it, not after the pointer did. The template for controls of the toolkit would do the same, but
/// insists on a role of its own towards assistive technology.
class FocusArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool visualFocus READ visualFocus NOTIFY visualFocusChanged FINAL)

  public:
    explicit FocusArea(QQuickItem *parent = nullptr);

    bool visualFocus() const { return visualFocus_; }

  Q_SIGNALS:
    void visualFocusChanged();

  protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

  private:
    void setVisualFocus(bool visual);

    bool visualFocus_ = false;
};

} // namespace quorbel
