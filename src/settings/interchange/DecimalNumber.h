#pragma once

#include <optional>
#include <string_view>

namespace quorbel {

/// The decimal mark in the numbers of one file.
enum class DecimalMark { unknown, point, comma };

/// Grouping of thousands: never in gains and Q, possible in frequencies in Hz.
enum class Grouping { never, possible };

/// Infers the file's decimal mark from one number: a comma from "-3,1" or "0,700", but unknown from
/// the frequency "1,000".
[[nodiscard]] DecimalMark evidentMark(std::string_view number, Grouping grouping);

/// Reads digits with an optional sign, marks and exponent, correctly rounded; returns none for any
/// other text or a value outside the range of 32-bit floats.
///
/// Frequencies such as "1,000" and "1.000" are ambiguous. A comma groups thousands, unless that
/// reading is inaudible (above 24000), or the file's decimal mark is the comma and the decimal
/// reading is audible (10 or more). A point is the decimal mark, unless the file's is the comma and
/// the grouped reading is audible.
[[nodiscard]] std::optional<float> readNumber(std::string_view number, Grouping grouping,
                                              DecimalMark fileMark);

} // namespace quorbel
