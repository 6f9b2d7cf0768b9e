#pragma once

#include <string>
#include <string_view>

namespace quorbel {

/// Appends the shortest decimal that reads back as the same value; `value` is finite.
void appendNumber(std::string &json, float value);
void appendNumber(std::string &json, double value);

/// Appends a string literal. Returns false and appends nothing if `text` is not UTF-8.
[[nodiscard]] bool appendString(std::string &json, std::string_view text);

/// A quoted string for an error text: one printable line, shortened to about forty characters.
[[nodiscard]] std::string quotedText(std::string_view text);

} // namespace quorbel
