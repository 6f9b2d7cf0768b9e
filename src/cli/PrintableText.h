#pragma once

#include <string>

namespace quorbel {

/// Replaces every control character of UTF-8 text with '?'. Foreign names and notes must neither
/// send escape sequences to the terminal nor break a line.
[[nodiscard]] std::string printable(const std::string &text);

} // namespace quorbel
