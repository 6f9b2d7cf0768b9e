import QtQuick
import Quorbel.Dotmatrix

// The inside of a button, a menu's line or a box of choices: a symbol, a small caption, a text; what is
// empty takes no room. A text too long for the width ends in dots.
Item {
    id: face

    property string symbol: ""
    property bool keepSymbolSpace: false
    property string caption: ""
    property alias text: label.text
    property alias font: label.font
    property alias color: label.color
    property real spacing: Theme.unit
    property bool centred: false

    readonly property real before: (mark.visible || keepSymbolSpace ? mark.width + (text !== "" ? spacing : 0) : 0) + (small.visible ? small.implicitWidth + spacing : 0)
    readonly property real left: centred ? Math.max(0, Math.round((width - implicitWidth) / 2)) : 0

    implicitWidth: before + (text !== "" ? label.implicitWidth : 0)
    implicitHeight: Math.max(mark.height, label.implicitHeight)

    Symbol {
        id: mark

        x: face.left
        y: Math.round((face.height - height) / 2)
        visible: face.symbol !== ""
        name: face.symbol
        color: label.color
    }
    Text {
        id: small

        x: face.left + (mark.visible ? mark.width + face.spacing : 0)
        anchors.baseline: label.baseline
        visible: text !== ""
        text: face.caption
        color: Theme.inkSoft
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
    Text {
        id: label

        x: face.left + face.before
        y: Math.round((face.height - height) / 2)
        width: Math.max(0, Math.min(implicitWidth, face.width - x))
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
