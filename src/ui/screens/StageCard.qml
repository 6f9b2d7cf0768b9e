import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One stage of the mixer and level screens: switch, name, a caption, and its controls below.
DotCard {
    id: card

    required property string name
    property string description: ""
    required property bool on
    /// What stands at the right end of the head, such as a meter.
    property alias trailing: trailingRow.data
    default property alias controls: controlColumn.data
    signal switched

    ColumnLayout {
        anchors.fill: parent
        spacing: 2 * Theme.unit

        RowLayout {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit

            DotToggle {
                checked: card.on
                accessibleName: card.name
                onToggled: card.switched()
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: Theme.unit / 4

                HeadingText {
                    Layout.fillWidth: true
                    text: card.name
                    Accessible.ignored: true // the switch says it
                }
                CaptionText {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: card.description
                }
            }
            RowLayout {
                id: trailingRow
                spacing: 2 * Theme.unit
            }
        }
        ColumnLayout {
            id: controlColumn
            Layout.fillWidth: true
            spacing: Theme.unit
        }
    }
}
