import QtQuick
import Quorbel.Dotmatrix

/// A small, quieter text beside a value or under a title.
Text {
    color: Theme.inkSoft
    font.family: Theme.fontFamily
    font.pixelSize: Theme.captionSize
    textFormat: Text.PlainText
    elide: Text.ElideRight
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
