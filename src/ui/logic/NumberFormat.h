#pragma once

#include "settings/records/SettingSchema.h"

#include <string>

namespace quorbel {

/// Numbers as the screens show them. What prints as zero prints without a minus; what is not a
/// number prints as "–".
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
