#pragma once

#include <QColor>

namespace quorbel {

/// The colours of the window. Every colour that is drawn comes from here; no other file holds one.
struct Palette {
    QColor paper;     // the window's ground
    QColor card;      // raised ground, a little lighter than paper
    QColor rule;      // hairlines between and around things; never a ground for text
    QColor pressed;   // ground of a control that is held, open or checked; text at least 4.5:1
    QColor edge;      // outlines of controls, at least 3:1 on paper and card
    QColor ink;       // text and lit dots
    QColor inkSoft;   // secondary text, at least 4.5:1 on paper and card
    QColor dot;       // a dot that is not lit
    QColor dotMid;    // a dot that is lit faintly, behind the lit ones
    QColor signal;    // the one signal colour, for areas and dots, at least 3:1
    QColor signalInk; // the signal colour as text, at least 4.5:1 on paper and card
    QColor signalDim; // the signal colour as a faint area
    QColor onSignal;  // text on signal, at least 4.5:1
    QColor warning;   // text of warnings and errors, at least 4.5:1
    QColor veil;      // over the window behind a dialog
};

/// @param highContrast  black on white with the same signal, text at least 7:1
const Palette &paletteFor(bool highContrast);

} // namespace quorbel
