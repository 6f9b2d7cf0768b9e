import QtQuick
import Quorbel.Dotmatrix

/// The name of a card or row.
PlainText {
    color: Theme.ink
    font.family: Theme.fontFamily
    font.pixelSize: Theme.headingSize
    font.weight: Font.DemiBold
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
