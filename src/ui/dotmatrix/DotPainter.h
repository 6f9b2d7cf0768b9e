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

/// Paints dots aligned to device pixels, equally crisp at every scale. All coordinates are device
/// pixels, including those of the wrapped painter during this object's lifetime.
class DotPainter {
  public:
    explicit DotPainter(QPainter &painter);
    ~DotPainter();
    DotPainter(const DotPainter &) = delete;
    DotPainter &operator=(const DotPainter &) = delete;

    /// Device pixels of one device-independent pixel.
    [[nodiscard]] double scale() const { return scale_; }

    QPainter *operator->() { return &painter_; }

    /// Paints one dot, its centre moved so that its edges fall between pixels.
    void dot(QPointF centre, double diameter, const QColor &color);

  private:
    QPainter &painter_;
    double scale_;
};

/// Picture of a dot, cached by colour and diameter: round from four pixels up, square below, where
/// a circle would blur. Diameter in device pixels, at least 1.
QPixmap dotSprite(int diameter, const QColor &color);

/// A grid of dots: number of cells, pitch and diameter, in device pixels.
struct DotLattice {
    QSize cells;
    QSize pitch;
    int diameter = 1;

    [[nodiscard]] QSize size() const;
    /// Upper left corner of the dot in this cell.
    [[nodiscard]] QPoint at(int column, int row) const;
};

/// Picture of the lattice in one colour on a transparent ground. Items blit parts of it instead of
/// painting dots.
QPixmap dotSheet(const DotLattice &lattice, const QColor &color);

} // namespace quorbel
