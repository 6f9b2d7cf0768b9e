#include "ui/dotmatrix/DotItem.h"

#include "ui/dotmatrix/DotPainter.h"

#include <cmath>

namespace quorbel {

DotItem::DotItem(QQuickItem *parent) : QQuickPaintedItem(parent) {
    // Snaps an item between two pixels to the nearer one; smoothing would blur its dots.
    setSmooth(false);
    connect(&Appearance::instance(), &Appearance::changed, this, [this] {
        dropPictures();
        repaint();
    });
}

void DotItem::itemChange(ItemChange change, const ItemChangeData &data) {
    QQuickPaintedItem::itemChange(change, data);
    if (change == ItemVisibleHasChanged && data.boolValue && stale_)
        repaint();
}

void DotItem::repaint() {
    stale_ = !isVisible();
    if (!stale_)
        update();
}

void DotItem::paint(QPainter *painter) {
    ++paintCount_;
    DotPainter dots(*painter);
    const QSize size(static_cast<int>(std::lround(width() * dots.scale())),
                     static_cast<int>(std::lround(height() * dots.scale())));
    if (size != paintedSize_) {
        paintedSize_ = size;
        dropPictures();
    }
    paintDots(dots, size);
}

} // namespace quorbel
