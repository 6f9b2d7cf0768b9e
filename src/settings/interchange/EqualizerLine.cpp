#include "settings/interchange/EqualizerLine.h"

#include "platform/core/Trimmed.h"
#include "settings/records/json/JsonLiterals.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace quorbel {

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isMark(char c) { return c == '.' || c == ','; }
bool isSign(char c) { return c == '+' || c == '-'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

std::string capitals(std::string_view text) {
    std::string result(text);
    for (char &c : result)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return result;
}

/// Replaces typographic blanks and minus signs with plain ones.
std::string plainTypography(std::string_view line) {
    static constexpr std::array<std::pair<std::string_view, char>, 6> replacements{{
        {"\u00A0", ' '}, // no-break
        {"\u2009", ' '}, // thin
        {"\u202F", ' '}, // narrow no-break
        {"\u2212", '-'}, // minus
        {"\u2013", '-'}, // en dash
        {"\uFEFF", ' '}, // byte order mark between joined files
    }};
    std::string plain;
    while (!line.empty()) {
        const auto *const found =
            std::find_if(replacements.begin(), replacements.end(),
                         [&](const auto &entry) { return line.starts_with(entry.first); });
        plain += found == replacements.end() ? line.front() : found->second;
        line.remove_prefix(found == replacements.end() ? 1 : found->first.size());
    }
    return plain;
}

struct Token {
    enum class Kind { word, number, other } kind = Kind::other;
    std::string_view text;
};

/// The end of the number at `at`; `at` if there is none.
std::size_t numberEnd(std::string_view text, std::size_t at) {
    const auto digitAt = [&](std::size_t i) { return i < text.size() && isDigit(text[i]); };
    std::size_t end = at + (isSign(text[at]) ? 1 : 0);
    if (!digitAt(end) && !(end < text.size() && isMark(text[end]) && digitAt(end + 1)))
        return at;
    // A mark belongs to the number only if a digit follows.
    while (digitAt(end) || (end < text.size() && isMark(text[end]) && digitAt(end + 1)))
        ++end;
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const std::size_t sign = end + 1 < text.size() && isSign(text[end + 1]) ? 1 : 0;
        if (digitAt(end + 1 + sign))
            for (end += 1 + sign; digitAt(end);)
                ++end;
    }
    return end;
}

std::vector<Token> tokensOf(std::string_view text) {
    std::vector<Token> tokens;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = numberEnd(text, at);
        if (end > at) {
            tokens.push_back({Token::Kind::number, text.substr(at, end - at)});
        } else if (isLetter(text[at])) {
            for (end = at; end < text.size() && isLetter(text[end]);)
                ++end;
            tokens.push_back({Token::Kind::word, text.substr(at, end - at)});
        } else {
            end = at + 1;
            if (!isBlank(text[at]) && !isMark(text[at]) && text[at] != ';')
                tokens.push_back({Token::Kind::other, text.substr(at)});
        }
        at = end;
    }
    return tokens;
}

struct Refusal {
    std::string reason;
};

class Reader {
  public:
    explicit Reader(std::string_view text) : tokens_(tokensOf(text)) {}

    [[nodiscard]] bool atEnd() const { return next_ == tokens_.size(); }
    [[nodiscard]] std::string rest() const {
        return atEnd() ? "the end of the line" : quotedText(tokens_[next_].text);
    }

    bool take(std::string_view word) {
        if (atEnd() || tokens_[next_].kind != Token::Kind::word ||
            capitals(tokens_[next_].text) != word)
            return false;
        ++next_;
        return true;
    }

    std::string takeWord(const std::string &expected) {
        if (atEnd() || tokens_[next_].kind != Token::Kind::word)
            throw Refusal{"expected " + expected + ", found " + rest()};
        return capitals(tokens_[next_++].text);
    }

    std::string takeNumber(const std::string &of) {
        if (!atNumber())
            throw Refusal{"expected a number for " + of + ", found " + rest()};
        return std::string(tokens_[next_++].text);
    }

    /// Takes a number with optional blanks between thousands: "1 000".
    std::string takeBlankGrouped(const std::string &of) {
        const auto allDigits = [](std::string_view text) {
            return std::all_of(text.begin(), text.end(), isDigit);
        };
        std::string number = takeNumber(of);
        if (number.size() <= 3 && allDigits(number))
            while (atNumber() && tokens_[next_].text.size() >= 3 &&
                   allDigits(tokens_[next_].text.substr(0, 3)) &&
                   (tokens_[next_].text.size() == 3 || isMark(tokens_[next_].text[3]))) {
                number += tokens_[next_++].text;
                if (!isDigit(number.back()) || number.find_first_of(".,") != std::string::npos)
                    break;
            }
        return number;
    }

    [[nodiscard]] bool atNumber() const {
        return !atEnd() && tokens_[next_].kind == Token::Kind::number;
    }

  private:
    std::vector<Token> tokens_;
    std::size_t next_ = 0;
};

void putOnce(std::optional<std::string> &field, std::string value, const char *name) {
    if (field)
        throw Refusal{std::string(name) + " is given twice"};
    field = std::move(value);
}

FilterLine parseFilter(std::string_view text) {
    Reader reader(text);
    FilterLine filter;
    const std::string state = reader.takeWord("ON or OFF");
    if (state != "ON" && state != "OFF")
        throw Refusal{"expected ON or OFF, found " + quotedText(state)};
    filter.on = state == "ON";
    filter.type = reader.takeWord("a filter type");
    if (filter.type == "NONE")
        throw Refusal{"no filter is set"};
    if (reader.atNumber())
        throw Refusal{"a slope in dB in the place of Q is not supported"};
    while (!reader.atEnd()) {
        if (reader.take("FC")) {
            putOnce(filter.frequency, reader.takeBlankGrouped("Fc"), "Fc");
            filter.kilohertz = reader.take("KHZ");
            if (!filter.kilohertz)
                reader.take("HZ");
        } else if (reader.take("GAIN")) {
            putOnce(filter.gain, reader.takeNumber("Gain"), "Gain");
            reader.take("DB");
        } else if (reader.take("Q")) {
            putOnce(filter.q, reader.takeNumber("Q"), "Q");
        } else if (reader.take("BW")) {
            reader.take("OCT");
            putOnce(filter.octaves, reader.takeNumber("BW"), "BW");
        } else {
            throw Refusal{"expected Fc, Gain, Q or BW, found " + reader.rest()};
        }
    }
    return filter;
}

PreampLine parsePreamp(std::string_view text) {
    Reader reader(text);
    PreampLine preamp{reader.takeNumber("the preamp")};
    reader.take("DB");
    if (!reader.atEnd())
        throw Refusal{"expected nothing more, found " + reader.rest()};
    return preamp;
}

ChannelLine parseChannel(std::string_view text) {
    bool left = false;
    bool right = false;
    for (const Token &token : tokensOf(text)) {
        const std::string name = capitals(token.text);
        if (name == "ALL")
            return {.everything = true};
        left = left || name == "L" || name == "1";
        right = right || name == "R" || name == "2";
    }
    return {.everything = left && right};
}

/// "Filter", "Filter 12", "filter12"
bool isFilterKeyword(std::string_view keyword) {
    constexpr std::string_view name = "FILTER";
    if (!keyword.starts_with(name))
        return false;
    const std::string_view number = trimmed(keyword.substr(name.size()));
    return std::all_of(number.begin(), number.end(), isDigit);
}

} // namespace

EqualizerLine parseEqualizerLine(std::string_view line) {
    const std::string plain = plainTypography(line);
    const std::string_view text = trimmed(plain);
    if (text.empty() || text.front() == '#')
        return EmptyLine{};
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        return RefusedLine{"neither a filter nor a preamp: " + quotedText(text)};
    const std::string keyword = capitals(trimmed(text.substr(0, colon)));
    const std::string_view rest = text.substr(colon + 1);
    try {
        if (isFilterKeyword(keyword))
            return parseFilter(rest);
        if (keyword == "PREAMP")
            return parsePreamp(rest);
        if (keyword == "CHANNEL")
            return parseChannel(rest);
    } catch (const Refusal &refusal) {
        return RefusedLine{refusal.reason};
    }
    return RefusedLine{"neither a filter nor a preamp: " + quotedText(text)};
}

} // namespace quorbel
