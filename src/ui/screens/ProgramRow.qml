import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// One stream of a program, with the switch for its processing.
FocusScope {
    id: row

    required property int index
    required property string name
    required property string title
    required property string status
    required property bool processed
    required property bool fixed
    required property bool surround

    implicitHeight: line.implicitHeight + 2 * Theme.unit

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        visible: row.index > 0
        height: 1
        color: Theme.rule
    }
    WrapRow {
        id: line
        x: 2 * Theme.unit
        y: Theme.unit
        width: row.width - 4 * Theme.unit
        spacing: 2 * Theme.unit
        rowSpacing: Theme.unit

        Column {
            WrapRow.fills: true
            WrapRow.minimumWidth: Math.min(line.width, 24 * Theme.textUnit)
            spacing: Theme.unit / 4

            BodyText {
                width: parent.width
                elide: Text.ElideRight
                text: row.name
            }
            CaptionText {
                width: parent.width
                visible: row.title !== ""
                elide: Text.ElideRight
                wrapMode: Text.NoWrap
                text: row.title
            }
        }
        CaptionText {
            WrapRow.minimumWidth: Math.min(line.width, 24 * Theme.textUnit)
            text: row.status
        }
        DotToggle {
            WrapRow.minimumWidth: Math.min(line.width, 25 * Theme.textUnit)
            enabled: !row.fixed
            checked: row.processed
            text: row.surround ? qsTr("In stereo anyway") : qsTr("Process")
            accessibleName: qsTr("Process %1").arg(row.name)
            Accessible.description: row.status
            onToggled: {
                App.programs.setProcessed(row.index, !row.processed);
                checked = Qt.binding(() => row.processed); // it may stay unprocessed for another reason
            }
        }
    }
}
