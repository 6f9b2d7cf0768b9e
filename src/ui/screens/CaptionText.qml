import QtQuick
import Quorbel.Dotmatrix

/// A small, quieter text beside a value or under a title.
PlainText {
    color: Theme.inkSoft
    font.family: Theme.fontFamily
    font.pixelSize: Theme.captionSize
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
