#include "ui/dotmatrix/DotFont.h"

#include <gtest/gtest.h>

#include <map>

namespace quorbel {
namespace {

const QString own =
    QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ+-.,:%/()!?=_'&dfhkmsz\u00b7\u221e\u00b0");

TEST(DotFont, HasEveryCharacterThatTheWindowShows) {
    const QString texts =
        QStringLiteral("+12.0 dB -0.3 \u22123 31.5 1k 16k 48 kHz \u00b7 32 ms \u00b7 "
                       "LIVE ERROR STOPPED 100% 1,5 12:30 1/2");
    for (const QChar character : texts) {
        EXPECT_TRUE(dotFont::has(character)) << QString(character).toStdString();
    }
    EXPECT_FALSE(dotFont::has(QChar(u'\u4e2d')));
}

TEST(DotFont, GlyphsAreDistinctAndInTheirWidth) {
    std::map<std::array<std::uint8_t, dotFont::rows>, QChar> seen;
    for (const QChar character : own) {
        const auto glyph = dotFont::glyph(character);
        const auto [other, isNew] = seen.emplace(glyph.bits, character);
        EXPECT_TRUE(isNew) << QString(character).toStdString() << " looks like "
                           << QString(other->second).toStdString();
        const unsigned beyond = (1U << (5 - glyph.width)) - 1;
        for (const unsigned row : glyph.bits) {
            EXPECT_EQ(row & beyond, 0U) << QString(character).toStdString();
        }
    }
}

TEST(DotFont, NumbersKeepTheirPlaces) {
    // Digits are equally wide, so that a changing value does not move what stands beside it.
    for (const QChar digit : QStringLiteral("0123456789+-")) {
        EXPECT_EQ(dotFont::glyph(digit).width, 5);
    }
    EXPECT_EQ(dotFont::columns(QStringLiteral("+3.5")), dotFont::columns(QStringLiteral("-0.0")));
    EXPECT_EQ(dotFont::columns(QString()), 0);
    EXPECT_EQ(dotFont::columns(QStringLiteral("00")), 11);
}

} // namespace
} // namespace quorbel
