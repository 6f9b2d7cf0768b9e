#pragma once

#include <QColor>

namespace quorbel {

/// All colours of the window; no other file defines one.
struct Palette {
    QColor paper;     // background of the window
    QColor card;      // raised background, slightly lighter than paper
    QColor rule;      // hairlines; never a background of text
    QColor pressed;   // background of a held, open or checked control; text at least 4.5:1
    QColor edge;      // outlines of controls, at least 3:1 on paper and card
    QColor ink;       // text and lit dots
    QColor inkSoft;   // secondary text, at least 4.5:1 on paper and card
    QColor dot;       // unlit dots
    QColor dotMid;    // faintly lit dots, behind the lit ones
    QColor signal;    // the one signal colour, for areas and dots, at least 3:1
    QColor signalInk; // the signal colour as text, at least 4.5:1 on paper and card
    QColor signalDim; // the signal colour as a faint area
    QColor onSignal;  // text on signal, at least 4.5:1
    QColor warning;   // text of warnings and errors, at least 4.5:1
    QColor veil;      // over the window behind a dialog
};

/// @param highContrast  black on white with a darker signal, text at least 7:1
const Palette &paletteFor(bool highContrast);

} // namespace quorbel
