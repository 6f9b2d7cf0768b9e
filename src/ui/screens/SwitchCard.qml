import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A switch with its title and explanation.
DotCard {
    id: card

    required property string title
    required property string explanation
    required property bool checked
    /// Enables the switch.
    property bool offered: true
    /// Reason for a disabled switch, or an error; may be empty.
    property string note: ""
    signal toggled

    RowLayout {
        anchors.fill: parent
        spacing: 2 * Theme.unit

        DotToggle {
            checked: card.checked
            enabled: card.offered
            accessibleName: card.title
            Accessible.description: card.note !== "" ? card.note : card.explanation
            onToggled: {
                card.toggled();
                checked = Qt.binding(() => card.checked); // the request may have failed
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.unit / 4

            HeadingText {
                Layout.fillWidth: true
                text: card.title
                Accessible.ignored: true // the switch has this name
            }
            CaptionText {
                Layout.fillWidth: true
                text: card.explanation
            }
            CaptionText {
                Layout.fillWidth: true
                visible: text !== ""
                text: card.note
                color: Theme.warning
            }
        }
    }
}
