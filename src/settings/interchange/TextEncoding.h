#pragma once

#include <string>
#include <string_view>

namespace quorbel {

/// Converts text of unknown encoding to UTF-8. Its byte order mark decides (UTF-8, UTF-16, UTF-32);
/// without one it is UTF-8 if valid, else Windows-1252. Never fails; the mark is left out.
[[nodiscard]] std::string utf8FromText(std::string_view bytes);

} // namespace quorbel
