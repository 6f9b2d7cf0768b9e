import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

T.ScrollBar {
    id: control

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 2
    minimumSize: 0.1
    Accessible.ignored: true // the content exposes its own position
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1

    contentItem: Rectangle {
        implicitWidth: Theme.radius
        implicitHeight: Theme.radius
        radius: Theme.radius / 2
        color: control.pressed || control.hovered ? Theme.ink : Theme.edge
    }
}
