#pragma once

#include <optional>
#include <string_view>

namespace quorbel {

// Parsers of typed values: a number with decimal point or comma, blanks, and the unit or its
// beginning in either case; nullopt for any other text. They do not limit the range.

/// Hz: "8k", "1,5 kHz", "250", "31.5 Hz". Three digits after a point or comma are thousands, unless
/// the value would exceed 24 kHz: "16.000" and "16,000" are 16 kHz, "31.500" is 31.5 Hz.
[[nodiscard]] std::optional<double> parseFrequency(std::string_view text);

/// dB: "-3 dB", "+1,5", "−2" (with U+2212).
[[nodiscard]] std::optional<double> parseGain(std::string_view text);

/// ".7", "Q 1,4"
[[nodiscard]] std::optional<double> parseQ(std::string_view text);

} // namespace quorbel
