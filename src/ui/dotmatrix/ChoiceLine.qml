import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// One of the choices of an open box, with the heading of its group above the first of a group. Looks like a
// line of a menu, but is none: up to Qt 6.4 a control's role for assistive technology is that of its kind,
// whatever is set.
T.ItemDelegate {
    id: control

    property string symbol: ""
    property string heading: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(Theme.controlHeight, contentItem.implicitHeight + 1.5 * Theme.unit) + topInset
    topInset: group.visible ? group.height : 0
    topPadding: topInset
    containmentMask: background
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

    PlainText {
        id: group

        visible: text !== ""
        width: control.width
        leftPadding: Theme.unit
        topPadding: Theme.unit
        bottomPadding: Theme.unit / 2
        text: control.heading
        color: Theme.inkSoft
        font.pixelSize: Theme.captionSize
        font.letterSpacing: 1
        font.capitalization: Font.AllUppercase
        elide: Text.ElideRight
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
