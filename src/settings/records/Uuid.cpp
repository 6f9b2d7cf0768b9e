#include "settings/records/Uuid.h"

#include <QUuid>

#include <cstddef>
#include <cstring>

namespace quorbel {

namespace {

constexpr std::size_t textLength = 36;

bool isHyphenPosition(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

int hexDigitValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

} // namespace

Uuid Uuid::random() {
    const QByteArray random = QUuid::createUuid().toRfc4122();
    Uuid result;
    std::memcpy(result.bytes_.data(), random.constData(), result.bytes_.size());
    return result;
}

// QUuid's reader accepts braces and trailing text, which a settings file must not contain.
std::optional<Uuid> Uuid::fromText(std::string_view text) {
    if (text.size() != textLength)
        return std::nullopt;
    Uuid result;
    std::size_t digits = 0;
    for (std::size_t index = 0; index < textLength; ++index) {
        if (isHyphenPosition(index)) {
            if (text[index] != '-')
                return std::nullopt;
            continue;
        }
        const int value = hexDigitValue(text[index]);
        if (value < 0)
            return std::nullopt;
        std::uint8_t &byte = result.bytes_[digits / 2];
        byte = static_cast<std::uint8_t>(byte * 16 + value);
        ++digits;
    }
    return result;
}

std::string Uuid::text() const {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string result;
    result.reserve(textLength);
    for (const std::uint8_t byte : bytes_) {
        if (isHyphenPosition(result.size()))
            result += '-';
        result += hexDigits[byte >> 4U];
        result += hexDigits[byte & 0x0FU];
    }
    return result;
}

} // namespace quorbel
