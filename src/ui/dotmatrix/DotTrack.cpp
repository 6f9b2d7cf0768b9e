#include "ui/dotmatrix/DotTrack.h"

#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

constexpr double handle = 16;
constexpr double eyeSize = 6;   // in the handle, while it is hot
constexpr double clearance = 2; // between the handle and the next dot
constexpr double tickSize = 2;
constexpr double tickDistance = handle / 2 + 2; // from the middle of the track

} // namespace

DotTrack::DotTrack(QQuickItem *parent) : DotItem(parent) {}

void DotTrack::setPosition(double position) {
    if (take(position_, position))
        Q_EMIT positionChanged();
}

void DotTrack::setOrigin(double origin) {
    if (take(origin_, origin))
        Q_EMIT originChanged();
}

void DotTrack::setVertical(bool vertical) {
    if (take(vertical_, vertical))
        Q_EMIT verticalChanged();
}

void DotTrack::setHot(bool hot) {
    if (take(hot_, hot))
        Q_EMIT hotChanged();
}

void DotTrack::setTicks(const QList<double> &positions) {
    if (take(ticks_, positions))
        Q_EMIT ticksChanged();
}

double DotTrack::handleSize() const { return handle; }

double DotTrack::positionAt(double x, double y) const {
    const double travel = std::max(1.0, length() - handle);
    return vertical_ ? (length() - handle / 2 - y) / travel : (x - handle / 2) / travel;
}

double DotTrack::handleCentre(double position) const {
    const double along = handle / 2 + position * (length() - handle);
    return vertical_ ? length() - along : along;
}

bool DotTrack::isHandle(double x, double y) const {
    return std::abs((vertical_ ? y : x) - handleCentre(position_)) <= handle / 2 + 2;
}

void DotTrack::paintDots(DotPainter &painter, QSize) {
    const double scale = painter.scale();
    const double across = (vertical_ ? width() : height()) / 2;
    const auto place = [&](double position) {
        const double along = handleCentre(position);
        return (vertical_ ? QPointF(across, along) : QPointF(along, across)) * scale;
    };
    for (const double tick : ticks_) {
        const QPointF beside =
            (vertical_ ? QPointF(tickDistance, 0) : QPointF(0, tickDistance)) * scale;
        painter.dot(place(tick) - beside, tickSize * scale, palette().edge);
        painter.dot(place(tick) + beside, tickSize * scale, palette().edge);
    }
    // Spaces the dots equally between the ends of the handle's travel.
    const int steps = std::max(1, static_cast<int>(std::lround((length() - handle) / dotPitch)));
    const auto [first, last] = std::minmax(origin_, position_);
    for (int index = 0; index <= steps; ++index) {
        const double at = static_cast<double>(index) / steps;
        if (std::abs(handleCentre(at) - handleCentre(position_)) <
            handle / 2 + dotDiameter / 2 + clearance)
            continue;
        const bool lit = at >= first - 1e-9 && at <= last + 1e-9 && first != last;
        painter.dot(place(at), dotDiameter * scale, lit ? palette().ink : palette().dotMid);
    }
    const QPointF centre = place(position_);
    painter.dot(centre, handle * scale, palette().ink);
    if (hot_)
        painter.dot(centre, eyeSize * scale, palette().signal);
}

} // namespace quorbel
