import QtQuick
import Quorbel.Dotmatrix

// The ring around the item with the keyboard's focus. Anchored around its parent, never over it.
Rectangle {
    property real distance: 3

    anchors.fill: parent
    anchors.margins: -distance
    radius: Theme.radius + distance
    color: "transparent"
    border.width: 2
    border.color: Theme.signalInk
}
