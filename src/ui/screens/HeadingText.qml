import QtQuick
import Quorbel.Dotmatrix

/// The name of a card or row.
Text {
    color: Theme.ink
    font.family: Theme.fontFamily
    font.pixelSize: Theme.headingSize
    font.weight: Font.DemiBold
    textFormat: Text.PlainText
    elide: Text.ElideRight
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
