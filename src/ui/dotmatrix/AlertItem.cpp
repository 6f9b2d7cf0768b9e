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

// Not before everything that belongs to the change has been set.
void AlertItem::announceSoon() {
    if (!isPending_) {
        isPending_ = true;
        QMetaObject::invokeMethod(this, &AlertItem::announce, Qt::QueuedConnection);
    }
}

// Up to Qt 6.7 the bridge to AT-SPI drops alerts, and a screen reader says an alert when it begins
// to show. Qt tells of an item that appears; of one that has been there with another text it does
// not.
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
