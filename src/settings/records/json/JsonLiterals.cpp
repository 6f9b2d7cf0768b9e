#include "settings/records/json/JsonLiterals.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr std::size_t maximumQuoted = 40;

template <class Number> void appendShortest(std::string &text, Number value) {
    const Number size = std::abs(value);
    const bool plain = size == 0 || (size >= Number(1e-5) && size < Number(1e15));
    char digits[64];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    text.append(digits, end);
}

} // namespace

std::string quotedText(std::string_view text) {
    // Escapes to plain ASCII before cutting: a cut escape is ugly but printable.
    std::string literal =
        json(text.substr(0, 4 * maximumQuoted)).dump(-1, ' ', true, json::error_handler_t::replace);
    if (literal.size() <= maximumQuoted + 2 && text.size() <= 4 * maximumQuoted)
        return literal;
    return literal.substr(0, maximumQuoted) + "…\"";
}

// The JSON library prints about 3 of 1000 values with all 17 digits (-3.7487066000000002);
// std::to_chars guarantees the shortest form.
void appendNumber(std::string &text, float value) { appendShortest(text, value); }
void appendNumber(std::string &text, double value) { appendShortest(text, value); }

bool appendString(std::string &text, std::string_view value) {
    try {
        text += json(value).dump();
        return true;
    } catch (const json::type_error &) {
        return false;
    }
}

} // namespace quorbel
