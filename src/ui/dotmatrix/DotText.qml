import QtQuick
import Quorbel.Dotmatrix

// Numbers, units and single words in the dot font, seven dots of `dotSize` high.
DotTextItem {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
