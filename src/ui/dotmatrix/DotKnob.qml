import QtQuick
import Quorbel.Dotmatrix

// A value on a ring of dots, turned by moving the pointer up or to the right.
ValueControl {
    id: control

    property int dots: 25
    readonly property bool pressed: handle.pressed
    readonly property bool hovered: handle.hovered
    readonly property bool visualFocus: handle.visualFocus

    implicitWidth: 9 * Theme.unit
    implicitHeight: 9 * Theme.unit
    opacity: enabled ? 1 : Theme.disabledOpacity

    DotRing {
        anchors.fill: parent
        position: control.position
        origin: control.originPosition
        dots: control.dots
        hot: handle.hot
    }

    FocusRing {
        visible: handle.visualFocus
        radius: width / 2
    }

    ValueHandle {
        id: handle

        anchors.fill: parent
        target: control
        role: Accessible.Dial
    }
}
