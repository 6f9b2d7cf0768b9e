import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One stage: its switch and name, its value as dots and as a number, and all its controls once it is
/// opened.
DotCard {
    id: card

    required property string name
    required property string description
    required property string readout
    /// The value within its range, 0 to 1.
    required property real level
    required property bool on
    property bool expanded: false
    default property alias controls: controlColumn.data
    signal switched
    signal expandRequested

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit

            DotToggle {
                checked: card.on
                accessibleName: card.name
                onToggled: card.switched()
            }
            ColumnLayout {
                Layout.preferredWidth: 22 * Theme.unit
                Layout.fillWidth: false
                spacing: Theme.unit / 4

                HeadingText {
                    Layout.fillWidth: true
                    text: card.name
                }
                CaptionText {
                    Layout.fillWidth: true
                    text: card.description
                }
            }
            DotMeter {
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignVCenter
                implicitHeight: Theme.unit
                value: card.on ? card.level : 0
                from: 0
                to: 1
            }
            DotText {
                Layout.preferredWidth: 12 * Theme.unit
                Layout.alignment: Qt.AlignVCenter
                text: card.readout
                dotSize: 2
                color: card.on ? Theme.ink : Theme.inkSoft
                Accessible.name: card.name + ": " + card.readout
            }
            DotButton {
                Layout.preferredWidth: 15 * Theme.unit
                flat: true
                text: card.expanded ? qsTr("Hide") : qsTr("All controls")
                symbol: card.expanded ? "chevron.up" : "chevron.down"
                Accessible.description: card.name
                onClicked: card.expandRequested()
            }
        }
        ColumnLayout {
            id: controlColumn
            Layout.fillWidth: true
            Layout.topMargin: 2 * Theme.unit
            visible: card.expanded
            spacing: Theme.unit
        }
    }
}
