#include "ui/dotmatrix/FocusArea.h"

namespace quorbel {

FocusArea::FocusArea(QQuickItem *parent) : QQuickItem(parent) { setActiveFocusOnTab(true); }

void FocusArea::focusInEvent(QFocusEvent *event) {
    QQuickItem::focusInEvent(event);
    const auto reason = event->reason();
    setVisualFocus(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                   reason == Qt::ShortcutFocusReason);
}

void FocusArea::focusOutEvent(QFocusEvent *event) {
    QQuickItem::focusOutEvent(event);
    setVisualFocus(false);
}

void FocusArea::setVisualFocus(bool visual) {
    if (visualFocus_ != visual) {
        visualFocus_ = visual;
        Q_EMIT visualFocusChanged();
    }
}

} // namespace quorbel
