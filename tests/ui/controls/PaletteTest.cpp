#include "ui/dotmatrix/Palette.h"

#include "ui/controls/ContrastRatio.h"
#include "ui/dotmatrix/DotFont.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

struct Pair {
    const char *name;
    QColor Palette::*front;
    QColor Palette::*back;
};

// WCAG 2.1: 4.5:1 for text (1.4.3), 3:1 for parts needed to use a control (1.4.11); 7:1 for text
// with high contrast (1.4.6). Pairs inside controls: tst_contrast.qml.
constexpr Pair text[] = {
    {"ink on paper", &Palette::ink, &Palette::paper},
    {"ink on card", &Palette::ink, &Palette::card},
    {"soft ink on paper", &Palette::inkSoft, &Palette::paper},
    {"soft ink on card", &Palette::inkSoft, &Palette::card},
    {"signal ink on paper", &Palette::signalInk, &Palette::paper},
    {"signal ink on card", &Palette::signalInk, &Palette::card},
    {"warning on paper", &Palette::warning, &Palette::paper},
    {"warning on card", &Palette::warning, &Palette::card},
    {"text on signal", &Palette::onSignal, &Palette::signal},
};
constexpr Pair marks[] = {
    {"signal on paper", &Palette::signal, &Palette::paper},
    {"signal on card", &Palette::signal, &Palette::card},
    {"signal on ink, a handle's eye", &Palette::signal, &Palette::ink},
    {"edge on paper", &Palette::edge, &Palette::paper},
    {"edge on card", &Palette::edge, &Palette::card},
};

TEST(Palette, ColoursThatMeetCanBeToldApartMoreSoWithHighContrast) {
    for (const bool high : {false, true}) {
        const auto &palette = paletteFor(high);
        for (const auto &pair : text)
            EXPECT_GE(contrastRatio(palette.*pair.front, palette.*pair.back), high ? 7 : 4.5)
                << pair.name;
    }
    const auto &palette = paletteFor(false);
    for (const auto &pair : marks)
        EXPECT_GE(contrastRatio(palette.*pair.front, palette.*pair.back), 3) << pair.name;
    EXPECT_GE(contrastRatio(paletteFor(true).signal, paletteFor(true).paper), 4.5);
    EXPECT_GE(contrastRatio(paletteFor(true).edge, paletteFor(true).paper), 7);
}

TEST(DotFont, HasEveryCharacterThatTheWindowShows) {
    const QString texts =
        QStringLiteral("+12.0 dB -0.3 \u22123 31.5 1k 16k 48 kHz \u00b7 32 ms \u00b7 "
                       "LIVE ERROR STOPPED 100% 1,5 12:30 1/2");
    for (const QChar character : texts)
        EXPECT_TRUE(dotFont::has(character)) << QString(character).toStdString();
    EXPECT_FALSE(dotFont::has(QChar(u'\u4e2d')));
}

} // namespace
} // namespace quorbel
