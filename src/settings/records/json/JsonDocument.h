#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace quorbel {

/// Reads a JSON document. The last of duplicate keys counts, as with most readers. Nesting uses
/// memory, not stack, and is limited to 512 levels. Throws DecodingError with line and column for
/// invalid JSON: unfinished, empty, not UTF-8, `NaN`, a number beyond 64 bits, a zero byte.
[[nodiscard]] nlohmann::json parseJson(std::string_view text);

/// A value for an error text: one printable line, shortened.
[[nodiscard]] std::string excerpt(const nlohmann::json &value);

} // namespace quorbel
