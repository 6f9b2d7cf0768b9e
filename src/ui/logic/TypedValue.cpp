#include "ui/logic/TypedValue.h"

#include "settings/interchange/DecimalNumber.h"

#include <algorithm>
#include <string>

namespace quorbel {

namespace {

void replaceAll(std::string &text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

/// Returns `typed` in lower case, with ASCII minus signs and without blanks.
std::string plain(std::string_view typed) {
    std::string text(typed);
    for (const std::string_view minus : {"\u2212", "\u2013"})
        replaceAll(text, minus, "-");
    for (const std::string_view blank : {"\u00A0", "\u2009", "\u202F"})
        replaceAll(text, blank, "");
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t'; });
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

bool dropEnd(std::string &text, std::string_view end) {
    if (!text.ends_with(end))
        return false;
    text.resize(text.size() - end.size());
    return true;
}

std::optional<double> number(std::string_view text, Grouping grouping) {
    // A single number gives no context: a point may group thousands, as a comma does.
    const bool hasPoint = text.find('.') != std::string_view::npos;
    const auto value =
        readNumber(text, grouping, hasPoint ? DecimalMark::comma : DecimalMark::unknown);
    return value ? std::optional(static_cast<double>(*value)) : std::nullopt;
}

} // namespace

std::optional<double> parseFrequency(std::string_view typed) {
    std::string text = plain(typed);
    if (!dropEnd(text, "hz"))
        dropEnd(text, "h");
    if (!dropEnd(text, "k"))
        return number(text, Grouping::possible);
    const auto thousands = number(text, Grouping::never);
    return thousands ? std::optional(*thousands * 1000.0) : std::nullopt;
}

std::optional<double> parseGain(std::string_view typed) {
    std::string text = plain(typed);
    if (!dropEnd(text, "db"))
        dropEnd(text, "d");
    return number(text, Grouping::never);
}

std::optional<double> parseQ(std::string_view typed) {
    std::string text = plain(typed);
    if (text.starts_with("q="))
        text.erase(0, 2);
    else if (text.starts_with('q'))
        text.erase(0, 1);
    else
        dropEnd(text, "q");
    return number(text, Grouping::never);
}

} // namespace quorbel
