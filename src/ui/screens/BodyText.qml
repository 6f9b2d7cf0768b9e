import QtQuick
import Quorbel.Dotmatrix

/// Running text.
PlainText {
    color: Theme.ink
    font.family: Theme.fontFamily
    font.pixelSize: Theme.bodySize
    lineHeight: wrapMode === Text.NoWrap ? 1 : 1.25
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
