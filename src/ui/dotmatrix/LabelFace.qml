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

    readonly property real before: (mark.visible ? mark.width + spacing : 0) + (small.visible ? small.implicitWidth + spacing : 0)

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight

    Row {
        id: row

        anchors.verticalCenter: parent.verticalCenter
        anchors.horizontalCenter: face.centred ? parent.horizontalCenter : undefined
        spacing: face.spacing

        Symbol {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            visible: face.symbol !== "" || face.keepSymbolSpace
            name: face.symbol
            color: label.color
        }
        PlainText {
            id: small

            anchors.baseline: label.baseline
            visible: text !== ""
            text: face.caption
            color: Theme.inkSoft
            font.pixelSize: Theme.captionSize
            Accessible.ignored: true
        }
        PlainText {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            width: face.width > 0 ? Math.min(implicitWidth, Math.max(0, face.width - face.before)) : implicitWidth
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
}
