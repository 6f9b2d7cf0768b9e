#include "ui/dotmatrix/Palette.h"

#include "ui/controls/ContrastRatio.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

struct Pair {
    const char *name;
    QColor Palette::*front;
    QColor Palette::*back;
    double least;
};

// WCAG 2.1: 4.5:1 for text (1.4.3), 3:1 for what must be seen to use a control (1.4.11). With high
// contrast asked for, 7:1 for text (1.4.6). The controls' own pairs: tst_contrast.qml.
constexpr Pair text[] = {
    {"ink on paper", &Palette::ink, &Palette::paper, 4.5},
    {"ink on card", &Palette::ink, &Palette::card, 4.5},
    {"soft ink on paper", &Palette::inkSoft, &Palette::paper, 4.5},
    {"soft ink on card", &Palette::inkSoft, &Palette::card, 4.5},
    {"signal ink on paper", &Palette::signalInk, &Palette::paper, 4.5},
    {"signal ink on card", &Palette::signalInk, &Palette::card, 4.5},
    {"warning on paper", &Palette::warning, &Palette::paper, 4.5},
    {"warning on card", &Palette::warning, &Palette::card, 4.5},
    {"text on signal", &Palette::onSignal, &Palette::signal, 4.5},
};
constexpr Pair marks[] = {
    {"signal on paper", &Palette::signal, &Palette::paper, 3},
    {"signal on card", &Palette::signal, &Palette::card, 3},
    {"signal on ink, a handle's eye", &Palette::signal, &Palette::ink, 3},
    {"edge on paper", &Palette::edge, &Palette::paper, 3},
    {"edge on card", &Palette::edge, &Palette::card, 3},
};

TEST(Palette, ColoursThatMeetCanBeToldApart) {
    for (const auto &pair : text) {
        const auto &palette = paletteFor(false);
        EXPECT_GE(contrastRatio(palette.*pair.front, palette.*pair.back), pair.least) << pair.name;
    }
    for (const auto &pair : marks) {
        const auto &palette = paletteFor(false);
        EXPECT_GE(contrastRatio(palette.*pair.front, palette.*pair.back), pair.least) << pair.name;
    }
}

TEST(Palette, HighContrastHasMoreOfIt) {
    const auto &palette = paletteFor(true);
    for (const auto &pair : text) {
        EXPECT_GE(contrastRatio(palette.*pair.front, palette.*pair.back), 7) << pair.name;
    }
    EXPECT_GE(contrastRatio(palette.signal, palette.paper), 4.5);
    EXPECT_GE(contrastRatio(palette.edge, palette.paper), 7);
}

TEST(Palette, RatioIsTheStandards) {
    EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Qt::white, Qt::white), 1, 1e-9);
    // #767676 is known as the lightest grey that reaches 4.5:1 on white.
    EXPECT_NEAR(contrastRatio(QColor(0x767676), Qt::white), 4.54, 0.005);
    EXPECT_LT(contrastRatio(QColor(0x777777), Qt::white), 4.5);
}

} // namespace
} // namespace quorbel
