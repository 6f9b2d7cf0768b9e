import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A switch with its title and what it does.
DotCard {
    id: card

    required property string title
    required property string explanation
    required property bool checked
    /// True if it can be switched.
    property bool offered: true
    /// Why not, or what went wrong; empty for none.
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
                Accessible.ignored: true // the switch says it
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
