#pragma once

#include <string>

namespace quorbel {

/// Returns UTF-8 text with '?' for every control character. Names, notes and file names come from
/// elsewhere: an escape sequence in one must not reach the terminal, nor a line break split a line.
[[nodiscard]] std::string printable(const std::string &text);

} // namespace quorbel
