#include "settings/interchange/DecimalNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>

namespace quorbel {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view marks = ".,";
constexpr float lowestAudible = 10.0F;
constexpr float highestAudible = 24000.0F;

std::optional<float> plainValue(std::string_view text) {
    float value = 0.0F;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

/// The value of `number` with the decimal mark at `decimalAt` (npos: none); ignores other marks.
std::optional<float> valueWith(std::string_view number, std::size_t decimalAt) {
    std::string plain;
    for (std::size_t i = 0; i < number.size(); ++i)
        if (i == decimalAt)
            plain += '.';
        else if (marks.find(number[i]) == std::string_view::npos)
            plain += number[i];
    return plainValue(plain);
}

DecimalMark markOf(char character) {
    return character == ',' ? DecimalMark::comma : DecimalMark::point;
}

/// Decimal and grouping marks of a number.
struct Marks {
    std::size_t count = 0;
    std::size_t last = std::string_view::npos;
    bool oneKind = true;
    bool lastKindOnce = true;
    bool groupedWhole = true;   ///< three digits follow every mark, one to three precede the first,
                                ///< and the number does not start with 0
    bool groupedButLast = true; ///< the same without the last mark

    explicit Marks(std::string_view number) {
        const std::size_t mantissa = std::min(number.find_first_of("eE"), number.size());
        std::size_t previous = std::string_view::npos;
        for (std::size_t i = 0; i < mantissa; ++i) {
            if (marks.find(number[i]) == std::string_view::npos)
                continue;
            if (count == 0)
                groupedWhole = i >= 1 && i <= 3 && number[0] != '0' && mantissa == number.size();
            else
                groupedWhole = groupedWhole && i - previous == 4;
            groupedButLast = count == 0 || groupedWhole;
            if (count > 0 && number[i] != number[previous])
                oneKind = false;
            previous = i;
            ++count;
        }
        last = previous;
        if (count > 0) {
            groupedWhole = groupedWhole && mantissa - last == 4;
            lastKindOnce =
                std::count(number.begin(), number.begin() + static_cast<std::ptrdiff_t>(mantissa),
                           number[last]) == 1;
        }
    }
};

std::string_view withoutSign(std::string_view number) {
    if (!number.empty() && (number[0] == '+' || number[0] == '-'))
        number.remove_prefix(1);
    return number;
}

std::optional<float> readFrequency(std::string_view number, DecimalMark fileMark) {
    const Marks found(number);
    if (found.count == 0)
        return plainValue(number);
    if (!found.oneKind) {
        if (!found.lastKindOnce || !found.groupedButLast)
            return std::nullopt;
        return valueWith(number, found.last);
    }
    if (found.count > 1)
        return found.groupedWhole ? valueWith(number, std::string_view::npos) : std::nullopt;

    const auto decimal = valueWith(number, found.last);
    if (!found.groupedWhole || !decimal)
        return decimal;
    const auto grouped = valueWith(number, std::string_view::npos);
    const bool point = markOf(number[found.last]) == DecimalMark::point;
    if (!grouped || *grouped > highestAudible)
        return decimal;
    if (point)
        return fileMark == DecimalMark::comma ? grouped : decimal;
    return fileMark == DecimalMark::comma && *decimal >= lowestAudible ? decimal : grouped;
}

} // namespace

DecimalMark evidentMark(std::string_view number, Grouping grouping) {
    const std::string_view unsignedNumber = withoutSign(number);
    const Marks found(unsignedNumber);
    if (found.count == 0 || (found.count > 1 && found.oneKind))
        return DecimalMark::unknown;
    if (grouping == Grouping::possible && found.oneKind && found.groupedWhole)
        return DecimalMark::unknown;
    return markOf(unsignedNumber[found.last]);
}

std::optional<float> readNumber(std::string_view number, Grouping grouping, DecimalMark fileMark) {
    const std::string_view unsignedNumber = withoutSign(number);
    if (unsignedNumber.empty() || (digits.find(unsignedNumber[0]) == std::string_view::npos &&
                                   marks.find(unsignedNumber[0]) == std::string_view::npos))
        return std::nullopt;
    std::optional<float> value;
    if (grouping == Grouping::possible) {
        value = readFrequency(unsignedNumber, fileMark);
    } else {
        const Marks found(unsignedNumber);
        if (found.count <= 1)
            value = valueWith(unsignedNumber, found.last);
    }
    if (value && number[0] == '-')
        value = -*value;
    return value;
}

} // namespace quorbel
