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
    property string readoutUnit: ""
    readonly property real expanderWidth: 15 * Theme.unit
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
                    Accessible.ignored: true // the switch says it
                }
                CaptionText {
                    Layout.fillWidth: true
                    text: card.description
                }
            }
            DotMeter {
                Layout.fillWidth: true
                // In line with the dots of the sliders below, which leave room for their handle.
                Layout.leftMargin: 6
                Layout.alignment: Qt.AlignVCenter
                implicitHeight: Theme.unit
                accessibleName: card.name
                valueText: card.readout + card.readoutUnit
                value: card.on ? card.level : 0
                from: 0
                to: 1
            }
            RowLayout {
                Layout.preferredWidth: 13 * Theme.unit
                Layout.maximumWidth: 13 * Theme.unit
                spacing: Theme.unit / 2
                Accessible.role: Accessible.StaticText
                Accessible.name: card.name + ": " + card.readout + card.readoutUnit

                DotText {
                    text: card.readout
                    dotSize: 2
                    color: card.on ? Theme.ink : Theme.inkSoft
                    Accessible.ignored: true
                }
                BodyText {
                    Layout.fillWidth: true
                    text: card.readoutUnit
                    color: card.on ? Theme.ink : Theme.inkSoft
                    Accessible.ignored: true
                }
            }
            Item {
                Layout.preferredWidth: card.expanderWidth
                implicitHeight: expander.height

                DotButton {
                    id: expander
                    anchors.right: parent.right
                    flat: true
                    text: card.expanded ? qsTr("Hide") : qsTr("All controls")
                    symbol: card.expanded ? "chevron.up" : "chevron.down"
                    Accessible.description: card.name
                    onClicked: card.expandRequested()
                }
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
