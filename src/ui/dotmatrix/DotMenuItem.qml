import QtQuick
import QtQuick.Templates as T

T.MenuItem {
    id: control

    property string symbol: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.unit
    rightPadding: 2 * Theme.unit
    spacing: Theme.unit
    font.pixelSize: Theme.bodySize
    opacity: enabled ? 1 : Theme.disabledOpacity

    Accessible.name: text

    contentItem: Item {
        implicitWidth: mark.width + control.spacing + label.implicitWidth
        implicitHeight: label.implicitHeight

        Symbol {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            width: size
            height: size
            name: control.checked ? "checkmark" : control.symbol
            color: label.color
        }
        Text {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            x: mark.width + control.spacing
            width: parent.width - x
            text: control.text
            font: control.font
            elide: Text.ElideRight
            color: control.highlighted ? Theme.card : Theme.ink
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.highlighted ? Theme.ink : "transparent"
    }
}
