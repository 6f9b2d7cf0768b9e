#pragma once

#include "settings/records/SettingSchema.h"

#include <cmath>
#include <string>

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

/// Numbers as the screens show them. A printed zero has no minus; NaN prints as "–".
///
/// `decimals` 0 to 9.
[[nodiscard]] std::string fixedText(double value, int decimals);
/// With a plus where it is not negative.
[[nodiscard]] std::string signedText(double value, int decimals);

/// "+2.0 dB"
[[nodiscard]] std::string gainText(double dB);

/// The value in the unit of its scale: "-0.3 dBFS", "2000 Hz". One decimal where the steps are
/// smaller than 1.
[[nodiscard]] std::string valueText(double value, const SettingScale &scale);

/// A frequency to be read exactly: "31.5 Hz", "2537 Hz".
[[nodiscard]] std::string frequencyText(double hertz);

/// A band's frequency in Hz, short: "31.5", "250", "2.5k", "16k".
[[nodiscard]] std::string frequencyLabel(float hertz);

} // namespace quorbel
