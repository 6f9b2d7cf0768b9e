#include "ui/dotmatrix/FocusArea.h"

namespace quorbel {

FocusArea::FocusArea(QQuickItem *parent) : QQuickItem(parent) { setActiveFocusOnTab(true); }

void FocusArea::focusInEvent(QFocusEvent *event) {
    QQuickItem::focusInEvent(event);
    turned_ = 0;
    const auto reason = event->reason();
    setVisualFocus(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                   reason == Qt::ShortcutFocusReason);
}

void FocusArea::focusOutEvent(QFocusEvent *event) {
    QQuickItem::focusOutEvent(event);
    setVisualFocus(false);
}

void FocusArea::wheelEvent(QWheelEvent *event) {
    if (!hasActiveFocus() || !takesWheel_ || event->angleDelta().y() == 0) {
        event->ignore();
        return;
    }
    constexpr int notch = QWheelEvent::DefaultDeltasPerStep;
    turned_ += event->angleDelta().y();
    if (const int notches = turned_ / notch; notches != 0) {
        turned_ -= notches * notch;
        Q_EMIT wheelTurned(notches);
    }
    event->accept();
}

void FocusArea::setVisualFocus(bool visual) {
    if (visualFocus_ != visual) {
        visualFocus_ = visual;
        Q_EMIT visualFocusChanged();
    }
}

} // namespace quorbel
