#pragma once

#include <optional>
#include <string_view>

namespace quorbel {

/// The character between whole and fraction in the numbers of one file.
enum class DecimalMark { unknown, point, comma };

/// Gains, Q and the like never have groups of thousands; frequencies in Hz may.
enum class Grouping { never, possible };

/// Evidence of one number for the decimal mark of its file: "-3,1" and "0,700" show a comma,
/// "1,000" as a frequency shows nothing.
[[nodiscard]] DecimalMark evidentMark(std::string_view number, Grouping grouping);

/// The value of digits with an optional sign, marks and exponent, exactly rounded; nothing for any
/// other text or a value that no finite 32-bit float comes near.
///
/// A frequency such as "1,000" or "1.000" can be read in two ways. A comma groups thousands, with
/// two exceptions: the file's decimal mark is the comma and the plain reading is audible (10 or
/// more), or the grouped reading is not (above 24000). A point is the decimal mark, unless the
/// file's is the comma and the grouped reading is audible.
[[nodiscard]] std::optional<float> readNumber(std::string_view number, Grouping grouping,
                                              DecimalMark fileMark);

} // namespace quorbel
