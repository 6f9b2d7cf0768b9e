import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A button with a text, a symbol or both. `primary`: the most important one; `flat`: without outline.
T.Button {
    id: control

    property string symbol: ""
    property bool primary: false
    property string accessibleName: ""
    /// Effect in one line, shown as a tool tip and exposed to assistive technology.
    property string help: ""

    readonly property color foreground: primary ? Theme.onSignal : Theme.ink

    implicitWidth: Math.max(implicitContentWidth + leftPadding + rightPadding, Theme.controlHeight)
    implicitHeight: Math.max(Theme.controlHeight, implicitContentHeight + 1.5 * Theme.unit)
    leftPadding: (text === "" ? 1 : flat ? 1 : 2) * Theme.unit
    rightPadding: leftPadding
    spacing: Theme.unit
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    opacity: enabled ? 1 : Theme.disabledOpacity

    Accessible.name: accessibleName !== "" ? accessibleName : text
    Accessible.description: help !== Accessible.name ? help : ""
    Accessible.onPressAction: {
        if (checkable) {
            toggle();
            toggled();
        }
        clicked();
    }

    DotToolTip {
        objectName: "toolTip"
        visible: control.hovered && text !== ""
        text: control.help
    }

    background: Rectangle {
        radius: Theme.radius
        color: control.primary ? (control.down || control.hovered ? Theme.signalInk : Theme.signal) : control.down || control.checked ? Theme.pressed : control.flat ? (control.hovered ? Theme.pressed : "transparent") : Theme.card
        border.width: control.primary || control.flat ? 0 : Theme.hairline
        border.color: control.hovered || control.down ? Theme.ink : Theme.edge

        FocusRing {
            visible: control.visualFocus
        }
    }

    contentItem: LabelFace {
        centred: true
        symbol: control.symbol
        text: control.text
        font: control.font
        spacing: control.spacing
        color: control.foreground
    }
}
