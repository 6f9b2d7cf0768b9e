import QtQuick
import Quorbel.Dotmatrix

// The ring around an item with the keyboard focus. `distance`: pixels outside its parent's edge.
Rectangle {
    property real distance: 3

    anchors.fill: parent
    anchors.margins: -distance
    radius: Theme.radius + distance
    color: "transparent"
    border.width: 2
    border.color: Theme.signalInk
}
