import QtQuick
import Quorbel.Dotmatrix

/// A text of the window in the size of running text.
PlainText {
    color: Theme.ink
    font.family: Theme.fontFamily
    font.pixelSize: Theme.bodySize
    lineHeight: wrapMode === Text.NoWrap ? 1 : 1.25
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
