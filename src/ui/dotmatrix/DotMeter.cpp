#include "ui/dotmatrix/DotMeter.h"

#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace quorbel {
namespace {

bool same(double one, double other) {
    return one == other || (std::isnan(one) && std::isnan(other));
}

} // namespace

DotMeter::DotMeter(QQuickItem *parent) : DotItem(parent), origin_(qQNaN()), peak_(qQNaN()) {
    setImplicitSize(20 * dotPitch, dotPitch);
}

void DotMeter::setFrom(double from) {
    if (!same(from_, from)) {
        from_ = from;
        light();
        Q_EMIT fromChanged();
    }
}

void DotMeter::setTo(double to) {
    if (!same(to_, to)) {
        to_ = to;
        light();
        Q_EMIT toChanged();
    }
}

void DotMeter::setValue(double value) {
    if (!same(value_, value)) {
        value_ = value;
        light();
        Q_EMIT valueChanged();
    }
}

double DotMeter::origin() const { return std::isnan(origin_) ? from_ : origin_; }

void DotMeter::setOrigin(double origin) {
    if (!same(origin_, origin)) {
        origin_ = origin;
        light();
        Q_EMIT originChanged();
    }
}

void DotMeter::resetOrigin() { setOrigin(qQNaN()); }

void DotMeter::setPeak(double peak) {
    if (!same(peak_, peak)) {
        peak_ = peak;
        light();
        Q_EMIT peakChanged();
    }
}

void DotMeter::resetPeak() { setPeak(qQNaN()); }

void DotMeter::geometryChange(const QRectF &now, const QRectF &before) {
    DotItem::geometryChange(now, before);
    light();
}

DotMeter::Lit DotMeter::lit() const {
    Lit result;
    result.count = std::max(1, static_cast<int>(width() / dotPitch));
    const auto dots = [&](double value) {
        const double position = (value - from_) / (to_ - from_);
        return std::isfinite(position)
                   ? static_cast<int>(std::lround(std::clamp(position, 0.0, 1.0) * result.count))
                   : 0;
    };
    std::tie(result.first, result.last) = std::minmax(dots(origin()), dots(value_));
    result.peak = std::isnan(peak_) ? -1 : std::max(0, dots(peak_) - 1);
    return result;
}

void DotMeter::light() {
    const Lit now = lit();
    if (now != lit_) {
        lit_ = now;
        repaint();
    }
}

void DotMeter::paintDots(DotPainter &painter, QSize size) {
    const double step = dotPitch * painter.scale();
    const double diameter = step * 0.625;
    for (int index = 0; index < lit_.count; ++index) {
        const bool on = index >= lit_.first && index < lit_.last;
        const QColor &color = index == lit_.peak ? palette().signal
                              : on               ? palette().ink
                                                 : palette().dot;
        painter.dot({index * step + diameter / 2, size.height() / 2.0}, diameter, color);
    }
}

} // namespace quorbel
