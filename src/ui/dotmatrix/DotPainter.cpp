#include "ui/dotmatrix/DotPainter.h"

#include <QPixmapCache>

#include <algorithm>
#include <cmath>

namespace quorbel {

DotPainter::DotPainter(QPainter &painter)
    : painter_(painter), scale_(painter.deviceTransform().m11()) {
    painter_.save();
    painter_.scale(1 / scale_, 1 / scale_);
}

DotPainter::~DotPainter() { painter_.restore(); }

void DotPainter::dot(QPointF centre, double diameter, const QColor &color) {
    const int pixels = std::max(1, static_cast<int>(std::lround(diameter)));
    const QPoint corner(static_cast<int>(std::lround(centre.x() - pixels / 2.0)),
                        static_cast<int>(std::lround(centre.y() - pixels / 2.0)));
    // Device pixels: the sprite's device pixel ratio is 1 on every screen.
    painter_.drawPixmap(corner, dotSprite(pixels, color));
}

QPixmap dotSprite(int diameter, const QColor &color) {
    const auto key = QStringLiteral("quorbel-dot-%1-%2").arg(diameter).arg(color.rgba());
    QPixmap sprite;
    if (QPixmapCache::find(key, &sprite))
        return sprite;
    sprite = QPixmap(diameter, diameter);
    sprite.fill(Qt::transparent);
    QPainter painter(&sprite);
    if (diameter < 4) {
        painter.fillRect(sprite.rect(), color);
    } else {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(sprite.rect());
    }
    painter.end();
    QPixmapCache::insert(key, sprite);
    return sprite;
}

QSize DotLattice::size() const {
    return {(cells.width() - 1) * pitch.width() + diameter,
            (cells.height() - 1) * pitch.height() + diameter};
}

QPoint DotLattice::at(int column, int row) const {
    return {column * pitch.width(), row * pitch.height()};
}

QPixmap dotSheet(const DotLattice &lattice, const QColor &color) {
    QPixmap sheet(lattice.size());
    sheet.fill(Qt::transparent);
    QPainter painter(&sheet);
    const QPixmap sprite = dotSprite(lattice.diameter, color);
    for (int row = 0; row < lattice.cells.height(); ++row)
        for (int column = 0; column < lattice.cells.width(); ++column)
            painter.drawPixmap(lattice.at(column, row), sprite);
    return sheet;
}

} // namespace quorbel
