#pragma once

#include <optional>
#include <string_view>

namespace quorbel {

// Readers of typed values: a number in either decimal notation, blanks, and the unit or its
// beginning in either case. They return nothing for any other text. Values are not limited here.

/// Hz: "8k", "1,5 kHz", "250", "31.5 Hz". Exactly three digits behind a point or comma are
/// thousands: "16.000" and "16,000" are 16 kHz. Not where that is above 24 kHz: "31.500" is 31.5
/// Hz.
[[nodiscard]] std::optional<double> parseFrequency(std::string_view text);

/// dB: "-3 dB", "+1,5", "−2" (with a minus sign proper).
[[nodiscard]] std::optional<double> parseGain(std::string_view text);

/// ".7", "Q 1,4"
[[nodiscard]] std::optional<double> parseQ(std::string_view text);

} // namespace quorbel
