import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A single-line text input.
T.TextField {
    id: control

    property alias placeholder: control.placeholderText
    property string accessibleName: ""

    implicitWidth: 25 * Theme.unit
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.unit
    rightPadding: Theme.unit
    verticalAlignment: TextInput.AlignVCenter
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    color: Theme.ink
    selectionColor: Theme.ink
    selectedTextColor: Theme.card
    placeholderTextColor: Theme.inkSoft
    selectByMouse: true
    opacity: enabled ? 1 : Theme.disabledOpacity

    Accessible.name: accessibleName !== "" ? accessibleName : placeholderText

    background: Rectangle {
        radius: Theme.radius
        color: Theme.card
        border.width: control.activeFocus ? 2 : Theme.hairline
        border.color: control.activeFocus ? Theme.signalInk : control.hovered ? Theme.ink : Theme.edge
    }

    PlainText {
        x: control.leftPadding
        width: control.width - control.leftPadding - control.rightPadding
        height: control.height
        visible: control.text === "" && control.preeditText === ""
        verticalAlignment: Text.AlignVCenter
        text: control.placeholderText
        font: control.font
        color: control.placeholderTextColor
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
