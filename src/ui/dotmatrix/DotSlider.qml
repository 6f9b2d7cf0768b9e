import QtQuick
import Quorbel.Dotmatrix

// A value on a row of dots. Emits `moved` while the user changes it, `resetRequested` on a double click.
ValueControl {
    id: control

    property int orientation: Qt.Horizontal
    property alias movesSideways: handle.movesSideways
    readonly property alias handle: handle
    /// Values marked beside the track.
    property list<real> ticks
    readonly property real handleSize: dotTrack.handleSize
    readonly property bool pressed: handle.pressed
    readonly property bool hovered: handle.hovered
    readonly property bool visualFocus: handle.visualFocus

    implicitWidth: orientation === Qt.Horizontal ? 25 * Theme.unit : 3 * Theme.unit
    implicitHeight: orientation === Qt.Horizontal ? 3 * Theme.unit : 25 * Theme.unit
    opacity: enabled ? 1 : Theme.disabledOpacity

    DotTrack {
        id: dotTrack

        anchors.fill: parent
        position: control.position
        origin: control.originPosition
        vertical: control.orientation === Qt.Vertical
        hot: handle.hot
        ticks: Array.from(control.ticks, tick => (tick - control.from) / (control.to - control.from))
    }

    Rectangle {
        readonly property real centre: dotTrack.handleCentre(control.position) + 0 * (dotTrack.width + dotTrack.height)

        visible: handle.visualFocus
        width: dotTrack.handleSize + 2 * Theme.unit - 6
        height: width
        radius: width / 2
        x: dotTrack.vertical ? (control.width - width) / 2 : centre - width / 2
        y: dotTrack.vertical ? centre - height / 2 : (control.height - height) / 2
        color: "transparent"
        border.width: 2
        border.color: Theme.signalInk
    }

    ValueHandle {
        id: handle

        anchors.fill: parent
        target: control
        track: dotTrack
    }
}
