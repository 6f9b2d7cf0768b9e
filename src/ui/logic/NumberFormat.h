#pragma once

#include "settings/records/SettingSchema.h"

#include <cmath>
#include <string>

namespace quorbel {

/// Converts between settings (32-bit floats) and QML (doubles), rounded to four decimals: -0.3 is
/// shown as -0.3 and not as -0.30000001192, and a slider in tenths saves tenths.
[[nodiscard]] inline double shownValue(double setting) {
    return std::isfinite(setting) ? std::round(setting * 1e4) / 1e4 + 0.0 : setting;
}
[[nodiscard]] inline double shownValue(float setting) {
    return shownValue(static_cast<double>(setting));
}
[[nodiscard]] inline float settingValue(double shown) {
    return static_cast<float>(shownValue(shown));
}

/// Formats a number for the screens, with 0 to 9 decimals. Zero has no minus sign; NaN is "–".
[[nodiscard]] std::string fixedText(double value, int decimals);
/// Adds a plus sign unless the value is negative.
[[nodiscard]] std::string signedText(double value, int decimals);

/// "+2.0 dB"
[[nodiscard]] std::string gainText(double dB);

/// Value with the unit of its scale: "-0.3 dBFS", "2000 Hz". One decimal for steps below 1.
[[nodiscard]] std::string valueText(double value, const SettingScale &scale);

/// Frequency without abbreviation: "31.5 Hz", "2537 Hz".
[[nodiscard]] std::string frequencyText(double hertz);

/// Short label of a frequency in Hz: "31.5", "250", "2.5k", "16k".
[[nodiscard]] std::string frequencyLabel(float hertz);

} // namespace quorbel
