import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One stage of the mixer and level screens: switch, name, a caption, and its controls below.
DotCard {
    id: card

    required property string name
    property string description: ""
    required property bool on
    /// Items at the right end of the head, such as a meter.
    property alias trailing: trailingRow.data
    default property alias controls: controlColumn.data
    signal switched

    ColumnLayout {
        anchors.fill: parent
        spacing: 2 * Theme.unit

        WrapRow {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            DotToggle {
                id: toggle
                checked: card.on
                accessibleName: card.name
                Accessible.description: head.help
                onToggled: card.switched()
            }
            StageName {
                id: head
                WrapRow.fills: true
                WrapRow.minimumWidth: Math.min(Theme.labelWidth, card.availableWidth - toggle.implicitWidth - 2 * Theme.unit)
                name: card.name
                description: card.description
                toggle: toggle
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
