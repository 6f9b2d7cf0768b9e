#include "settings/interchange/TextEncoding.h"

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>

#include <array>

namespace quorbel {

namespace {

// Windows-1252 differs from ISO 8859-1 only in 0x80 to 0x9F. The five unassigned bytes stay control
// characters, as in browsers (WHATWG Encoding, index windows-1252).
constexpr std::array<char16_t, 32> windows1252High{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString fromWindows1252(std::string_view bytes) {
    QString text(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool special = byte >= 0x80 && byte < 0xA0;
        text[static_cast<qsizetype>(i)] =
            QChar(special ? windows1252High[byte - 0x80U] : static_cast<char16_t>(byte));
    }
    return text;
}

} // namespace

std::string utf8FromText(std::string_view bytes) {
    const QByteArrayView data(bytes.data(), static_cast<qsizetype>(bytes.size()));
    const auto marked = QStringDecoder::encodingForData(data);
    QStringDecoder decoder(marked.value_or(QStringDecoder::Utf8), QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(data);
    if (!marked && decoder.hasError())
        text = fromWindows1252(bytes);
    return text.toStdString();
}

} // namespace quorbel
