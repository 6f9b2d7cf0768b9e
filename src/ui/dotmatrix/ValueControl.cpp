#include "ui/dotmatrix/ValueControl.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

ValueControl::ValueControl(QQuickItem *parent) : QQuickItem(parent), origin_(qQNaN()) {
    setFlag(ItemIsFocusScope);
}

void ValueControl::setFrom(double from) {
    if (from_ != from) {
        from_ = from;
        Q_EMIT fromChanged();
        Q_EMIT positionChanged();
        Q_EMIT originPositionChanged();
    }
}

void ValueControl::setTo(double to) {
    if (to_ != to) {
        to_ = to;
        Q_EMIT toChanged();
        Q_EMIT positionChanged();
        Q_EMIT originPositionChanged();
    }
}

void ValueControl::setValue(double value) {
    if (value_ != value && !std::isnan(value)) {
        value_ = value;
        Q_EMIT valueChanged();
        Q_EMIT positionChanged();
    }
}

void ValueControl::setStepSize(double size) {
    if (stepSize_ != size) {
        stepSize_ = size;
        Q_EMIT stepSizeChanged();
    }
}

double ValueControl::origin() const { return std::isnan(origin_) ? from_ : origin_; }

void ValueControl::setOrigin(double origin) {
    if (origin_ != origin && !(std::isnan(origin_) && std::isnan(origin))) {
        origin_ = origin;
        Q_EMIT originChanged();
        Q_EMIT originPositionChanged();
    }
}

void ValueControl::resetOrigin() { setOrigin(qQNaN()); }

double ValueControl::step() const { return stepSize_ > 0 ? stepSize_ : (to_ - from_) / 100; }

void ValueControl::moveTo(double value, double direction) {
    const double next = reachable(value);
    const double way = next - value_;
    if (way != 0 && way * direction >= 0) {
        setValue(next);
        Q_EMIT moved();
    }
}

void ValueControl::moveToPosition(double position, double direction) {
    moveTo(unscaled(scaled(from_) + position * (scaled(to_) - scaled(from_))),
           direction * (to_ - from_));
}

void ValueControl::moveBy(int steps) { moveTo(unscaled(scaled(value_) + steps * step()), steps); }

// Converts between values and the displayed scale: linear, or octaves.
double ValueControl::scaled(double value) const { return logarithmic ? std::log2(value) : value; }
double ValueControl::unscaled(double place) const { return logarithmic ? std::exp2(place) : place; }

double ValueControl::positionOf(double value) const {
    const double position = (scaled(value) - scaled(from_)) / (scaled(to_) - scaled(from_));
    return std::isfinite(position) ? std::clamp(position, 0.0, 1.0) : 0;
}

double ValueControl::reachable(double value) const {
    if (std::isnan(value))
        return value_;
    // The ends are reachable even if they lie between two steps.
    const auto [lowest, highest] = std::minmax(from_, to_);
    if (stepSize_ > 0 && !logarithmic && value > lowest && value < highest) {
        // Divides by a whole number of steps per unit if possible: 3 / 10 equals the literal 0.3,
        // 3 * 0.1 does not.
        const double steps = std::round((value - from_) / stepSize_);
        const double perUnit = std::round(1 / stepSize_);
        value = perUnit >= 1 && std::abs(perUnit * stepSize_ - 1) < 1e-9
                    ? std::round(from_ * perUnit + steps) / perUnit
                    : from_ + steps * stepSize_;
    }
    return std::clamp(value, lowest, highest);
}

} // namespace quorbel
