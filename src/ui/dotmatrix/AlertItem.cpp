#include "ui/dotmatrix/AlertItem.h"

#include <QAccessible>

#include <utility>

namespace quorbel {

void AlertItem::setText(const QString &text) {
    if (text_ != text) {
        text_ = text;
        announceSoon();
        Q_EMIT textChanged();
    }
}

void AlertItem::itemChange(ItemChange change, const ItemChangeData &data) {
    if (change == ItemVisibleHasChanged && data.boolValue) {
        hasAppeared_ = true;
        announceSoon();
    }
    QQuickItem::itemChange(change, data);
}

// Queues the announcement until all properties of one change are set.
void AlertItem::announceSoon() {
    if (!isPending_) {
        isPending_ = true;
        QMetaObject::invokeMethod(this, &AlertItem::announce, Qt::QueuedConnection);
    }
}

// Up to Qt 6.7 the AT-SPI bridge drops alerts, but screen readers announce an alert when it is
// shown. Qt sends the show event of an item that appears, but none for a changed text.
void AlertItem::announce() {
    isPending_ = false;
    const bool hasAppeared = std::exchange(hasAppeared_, false);
    if (text_.isEmpty() || !isVisible())
        return;
    Q_EMIT announced(text_);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    if (!hasAppeared) {
        QAccessibleEvent show(this, QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&show);
    }
}

} // namespace quorbel
