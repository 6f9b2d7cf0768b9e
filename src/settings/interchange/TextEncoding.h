#pragma once

#include <string>
#include <string_view>

namespace quorbel {

/// Converts text of unknown encoding to UTF-8; never fails. Obeys and drops a byte order mark
/// (UTF-8, UTF-16, UTF-32); text without one is UTF-8 if valid, else Windows-1252.
[[nodiscard]] std::string utf8FromText(std::string_view bytes);

} // namespace quorbel
