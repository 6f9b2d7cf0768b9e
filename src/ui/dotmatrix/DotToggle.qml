import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A switch: on is a dot in the signal colour at the right, off a ring at the left.
T.Switch {
    id: control

    property string accessibleName: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight, 3 * Theme.unit)
    spacing: Theme.unit
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    opacity: enabled ? 1 : Theme.disabledOpacity

    function turn() {
        toggle();
        toggled();
        clicked();
    }

    Accessible.name: accessibleName !== "" ? accessibleName : text
    Accessible.onToggleAction: turn()
    Accessible.onPressAction: turn()

    indicator: Rectangle {
        y: (control.height - height) / 2
        width: 5 * Theme.unit
        height: 3 * Theme.unit
        radius: height / 2
        color: control.checked ? Theme.signal : Theme.card
        border.width: Theme.hairline
        border.color: control.checked ? Theme.signal : Theme.edge

        Rectangle {
            x: (control.checked ? 2 : 0) * Theme.unit + (parent.height - width) / 2
            y: (parent.height - height) / 2
            width: 2 * Theme.unit
            height: width
            radius: width / 2
            color: control.checked ? Theme.onSignal : control.down ? Theme.ink : "transparent"
            border.width: control.checked ? 0 : 2
            border.color: Theme.ink

            Behavior on x {
                NumberAnimation {
                    duration: Theme.duration
                }
            }
        }

        FocusRing {
            visible: control.visualFocus
            radius: height / 2
        }
    }

    contentItem: PlainText {
        leftPadding: control.indicator.width + (control.text !== "" ? control.spacing : 0)
        text: control.text
        font: control.font
        color: Theme.ink
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
    }
}
