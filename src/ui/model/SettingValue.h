#pragma once

#include <cmath>

namespace quorbel {

/// Settings are 32-bit floats, QML's numbers are doubles. Between them values are rounded to four
/// decimals: -0.3 is shown as -0.3 and not as -0.30000001192, and a slider that moves in tenths
/// leaves tenths in the settings file.
[[nodiscard]] inline double shownValue(double setting) {
    return std::isfinite(setting) ? std::round(setting * 1e4) / 1e4 + 0.0 : setting;
}
[[nodiscard]] inline double shownValue(float setting) {
    return shownValue(static_cast<double>(setting));
}
[[nodiscard]] inline float settingValue(double shown) {
    return static_cast<float>(shownValue(shown));
}

} // namespace quorbel
