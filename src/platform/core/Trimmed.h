#pragma once

#include <string_view>

namespace quorbel {

/// Returns the text without the ASCII blanks and line breaks at its ends.
[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace quorbel
