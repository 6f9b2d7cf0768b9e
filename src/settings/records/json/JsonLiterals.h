#pragma once

#include <string>
#include <string_view>

namespace quorbel {

/// Appends the shortest decimal that reads back as the same 32-bit or 64-bit value; `value` is
/// finite.
void appendNumber(std::string &json, float value);
void appendNumber(std::string &json, double value);

/// Appends a string literal. Returns false, with nothing appended, for text that is not UTF-8.
[[nodiscard]] bool appendString(std::string &json, std::string_view text);

/// A string as an error text shows it: in quotation marks, on one line, printable, shortened to
/// about forty characters.
[[nodiscard]] std::string quotedText(std::string_view text);

} // namespace quorbel
