#pragma once

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QPointF>
#include <QSize>

namespace quorbel {

/// Distance and diameter of a control's dots, in device-independent pixels.
inline constexpr double dotPitch = 8;
inline constexpr double dotDiameter = 4;

/// Paints dots where the screen's pixels are. Everything here is in device pixels: while it lives,
/// the painter's coordinates are the item's own pixels, so that dots are equally crisp at every
/// scale.
class DotPainter {
  public:
    explicit DotPainter(QPainter &painter);
    ~DotPainter();
    DotPainter(const DotPainter &) = delete;
    DotPainter &operator=(const DotPainter &) = delete;

    /// Device pixels of one device-independent pixel.
    [[nodiscard]] double scale() const { return scale_; }

    QPainter *operator->() { return &painter_; }

    /// One dot, its centre moved so that its edges fall between pixels.
    void dot(QPointF centre, double diameter, const QColor &color);

  private:
    QPainter &painter_;
    double scale_;
};

/// A dot as a picture, kept by colour and diameter: round from four pixels up, square below, where
/// a circle would only be a blur. Diameter in device pixels, at least 1.
QPixmap dotSprite(int diameter, const QColor &color);

/// Dots at one distance: how many there are, how far apart and how large, in device pixels.
struct DotLattice {
    QSize cells;
    QSize pitch;
    int diameter = 1;

    [[nodiscard]] QSize size() const;
    /// Upper left corner of the dot in this cell.
    [[nodiscard]] QPoint at(int column, int row) const;
};

/// All dots of the lattice in one colour, on nothing. Items blit parts of it instead of painting
/// dots.
QPixmap dotSheet(const DotLattice &lattice, const QColor &color);

} // namespace quorbel
