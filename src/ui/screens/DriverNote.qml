import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// Explains that no driver was installed and how normal sound returns.
RowLayout {
    spacing: 1.5 * Theme.unit

    DotChip {
        text: qsTr("0 drivers")
    }
    BodyText {
        Layout.fillWidth: true
        Layout.alignment: Qt.AlignVCenter
        text: qsTr("Quit the app and macOS sound returns by itself.")
        wrapMode: Text.WordWrap
        lineHeight: 1 // level with the chip
        color: Theme.inkSoft
    }
}
