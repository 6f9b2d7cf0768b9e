#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace quorbel {

/// Reads a JSON document. Of equal keys in an object the later value counts, as with most readers.
/// Nesting costs memory, not stack, and ends at 512 levels. Throws DecodingError, with line and
/// column, for a text that is not JSON: unfinished, empty, not UTF-8, `NaN`, a number beyond 64
/// bits, a zero byte.
[[nodiscard]] nlohmann::json parseJson(std::string_view text);

/// A value as an error text shows it: on one line, printable, shortened.
[[nodiscard]] std::string excerpt(const nlohmann::json &value);

} // namespace quorbel
