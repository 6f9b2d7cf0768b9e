#include "ui/dotmatrix/Palette.h"

namespace quorbel {

const Palette &paletteFor(bool highContrast) {
    static const Palette normal{
        .paper = QColor(0xf0ece3),
        .card = QColor(0xfaf8f3),
        .rule = QColor(0xdcd6c9),
        .pressed = QColor(0xdcd6c9),
        .edge = QColor(0x8c8577),
        .ink = QColor(0x211f1b),
        .inkSoft = QColor(0x625d53),
        .dot = QColor(0xdfd9cc),
        .dotMid = QColor(0xbdb5a4),
        .signal = QColor(0xd5400c),
        .signalInk = QColor(0xb5330a),
        .signalDim = QColor(0xeeb79c),
        .onSignal = QColor(0xffffff),
        .warning = QColor(0xa32014),
        .veil = QColor(0x21, 0x1f, 0x1b, 0x66),
    };
    static const Palette high{
        .paper = QColor(0xffffff),
        .card = QColor(0xffffff),
        .rule = QColor(Qt::black),
        .pressed = QColor(0xd4d4d4),
        .edge = QColor(Qt::black),
        .ink = QColor(Qt::black),
        .inkSoft = QColor(0x2b2b2b),
        .dot = QColor(0xc4c4c4),
        .dotMid = QColor(0x8a8a8a),
        .signal = QColor(0xa82800),
        .signalInk = QColor(0x8f2200),
        .signalDim = QColor(0xe08a66),
        .onSignal = QColor(0xffffff),
        .warning = QColor(0x8c0000),
        .veil = QColor(0x00, 0x00, 0x00, 0x99),
    };
    return highContrast ? high : normal;
}

} // namespace quorbel
