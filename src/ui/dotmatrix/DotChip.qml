import QtQuick
import Quorbel.Dotmatrix

// A short fact beside a title.
Rectangle {
    id: chip

    property alias text: label.text
    property bool lit: false

    implicitWidth: label.implicitWidth + 2 * Theme.textUnit
    implicitHeight: Theme.fieldHeight
    radius: height / 2
    color: lit ? Theme.signal : "transparent"
    border.width: lit ? 0 : Theme.hairline
    border.color: Theme.edge

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    PlainText {
        id: label

        anchors.centerIn: parent
        color: chip.lit ? Theme.onSignal : Theme.inkSoft
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
}
