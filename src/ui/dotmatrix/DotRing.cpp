#include "ui/dotmatrix/DotRing.h"

#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel {
namespace {

constexpr double pointerSize = 6;
constexpr double faceMargin = 10; // from the item's edge to the face
constexpr double sweep = 1.5 * std::numbers::pi;

} // namespace

DotRing::DotRing(QQuickItem *parent) : DotItem(parent) {}

void DotRing::setPosition(double position) {
    if (take(position_, position))
        Q_EMIT positionChanged();
}

void DotRing::setOrigin(double origin) {
    if (take(origin_, origin))
        Q_EMIT originChanged();
}

void DotRing::setDots(int dots) {
    if (take(dots_, std::max(2, dots)))
        Q_EMIT dotsChanged();
}

void DotRing::setHot(bool hot) {
    if (take(hot_, hot))
        Q_EMIT hotChanged();
}

void DotRing::paintDots(DotPainter &painter, QSize) {
    const double scale = painter.scale();
    const QPointF middle(width() / 2, height() / 2);
    const double radius = std::min(width(), height()) / 2;
    // Position 0 at lower left, 1 at lower right, clockwise over the top.
    const auto place = [&](double position, double distance) {
        const double angle = (position - 0.5) * sweep;
        return (middle + QPointF(std::sin(angle), -std::cos(angle)) * distance) * scale;
    };
    const auto [first, last] = std::minmax(origin_, position_);
    for (int index = 0; index < dots_; ++index) {
        const double at = static_cast<double>(index) / (dots_ - 1);
        const bool lit = at >= first - 1e-9 && at <= last + 1e-9;
        painter.dot(place(at, radius - dotDiameter / 2), dotDiameter * scale,
                    lit ? palette().ink : palette().dotMid);
    }
    const double face = radius - faceMargin;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette().ink);
    painter->drawEllipse(middle * scale, face * scale, face * scale);
    painter->restore();
    painter.dot(place(position_, face - pointerSize), pointerSize * scale,
                hot_ ? palette().signal : palette().card);
}

} // namespace quorbel
