import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// One of the choices of an open box. Looks like a line of a menu, but is none: up to Qt 6.4 a control's role
// for assistive technology is that of its kind, whatever is set.
T.ItemDelegate {
    id: control

    property string symbol: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.unit
    rightPadding: 2 * Theme.unit
    spacing: Theme.unit
    font.pixelSize: Theme.bodySize
    hoverEnabled: true

    Accessible.name: text
    Accessible.selectable: true
    Accessible.onPressAction: clicked()

    contentItem: LabelFace {
        symbol: control.symbol
        keepSymbolSpace: true
        text: control.text
        font: control.font
        spacing: control.spacing
        color: control.highlighted ? Theme.card : Theme.ink
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.highlighted ? Theme.ink : "transparent"
    }
}
