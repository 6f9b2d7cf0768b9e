import QtQuick
import Quorbel.Dotmatrix

// The content of a button, menu item or combo box: symbol, small caption and text; empty ones take no room. A text
// too long for the width wraps, or is elided if `elides`.
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
    property bool elides: false

    readonly property real before: (mark.visible ? mark.implicitWidth + spacing : 0) + (small.visible ? small.implicitWidth + spacing : 0)

    implicitWidth: text !== "" ? before + natural : Math.max(0, before - spacing)
    implicitHeight: row.implicitHeight

    // Measured separately: the label's own measure changes while its width is being set.
    readonly property real natural: Math.ceil(metrics.advanceWidth) + 1

    readonly property bool fits: face.width <= 0 || natural <= face.width - before

    TextMetrics {
        id: metrics

        text: label.text
        font: label.font
    }

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
            textFormat: Text.PlainText
            Accessible.ignored: true
        }
        PlainText {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            width: face.fits ? face.natural : Math.max(0, face.width - face.before)
            elide: face.elides ? Text.ElideRight : Text.ElideNone
            // Wraps only if necessary: a wrapping text is briefly too high whenever its font changes.
            wrapMode: face.elides || face.fits ? Text.NoWrap : Text.Wrap
            textFormat: Text.PlainText
            Accessible.ignored: true
        }
    }
}
