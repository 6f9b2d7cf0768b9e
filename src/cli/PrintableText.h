#pragma once

#include <string>

namespace quorbel {

/// Returns UTF-8 text with '?' for every control character. Names, notes and file names come from
/// outside: their escape sequences must not reach the terminal, and their line breaks must not
/// split a line.
[[nodiscard]] std::string printable(const std::string &text);

} // namespace quorbel
