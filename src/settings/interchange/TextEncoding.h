#pragma once

#include <string>
#include <string_view>

namespace quorbel {

/// Text of unknown encoding as UTF-8: what a byte order mark says (UTF-8, UTF-16, UTF-32), else
/// UTF-8 where it is valid, else Windows-1252. Never fails; the mark is left out.
[[nodiscard]] std::string utf8FromText(std::string_view bytes);

} // namespace quorbel
