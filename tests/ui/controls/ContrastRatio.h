#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace quorbel {

/// The contrast of two opaque colours, 1 to 21 (WCAG 2.1, relative luminance and contrast ratio).
inline double contrastRatio(const QColor &one, const QColor &other) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](const QColor &color) {
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace quorbel
