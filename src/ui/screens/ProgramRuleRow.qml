import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// One remembered program.
FocusScope {
    id: row

    required property int index
    required property string name
    required property bool processed
    required property bool stereo
    required property string title

    implicitHeight: line.implicitHeight + 2 * Theme.unit

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
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

        BodyText {
            WrapRow.fills: true
            WrapRow.minimumWidth: Math.min(line.width, 20 * Theme.textUnit)
            elide: Text.ElideRight
            text: row.stereo ? qsTr("%1 (surround in stereo)").arg(row.name) : row.name
        }
        DotTextField {
            WrapRow.minimumWidth: Math.min(line.width, 18 * Theme.textUnit)
            placeholder: qsTr("All titles")
            accessibleName: qsTr("Titles of %1 that the rule is for; * is any text").arg(row.name)
            text: row.title
            onEditingFinished: {
                if (text.trim() !== row.title)
                    App.programRules.setTitle(row.index, text);
            }
        }
        DotToggle {
            checked: row.processed
            text: qsTr("Process")
            accessibleName: qsTr("Process %1 from now on").arg(row.name)
            onToggled: App.programRules.setProcessed(row.index, !row.processed)
        }
        DotButton {
            text: qsTr("Forget")
            help: qsTr("No rule of its own from now on")
            Accessible.name: qsTr("Forget the rule of %1").arg(row.name)
            onClicked: App.programRules.forget(row.index)
        }
    }
}
