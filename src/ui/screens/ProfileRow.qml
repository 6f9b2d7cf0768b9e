import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// One output and its profile.
FocusScope {
    id: row

    required property int index
    required property string name
    required property string place
    required property string profile
    required property int choice
    required property bool hasProfile

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
            WrapRow.minimumWidth: Math.min(line.width, 20 * Theme.textUnit)
            spacing: Theme.unit / 4

            BodyText {
                width: parent.width
                wrapMode: Text.Wrap
                text: row.name
            }
            CaptionText {
                width: parent.width
                visible: text !== ""
                text: row.place
            }
        }
        DotComboBox {
            WrapRow.minimumWidth: Math.min(line.width, 26 * Theme.textUnit)
            accessibleName: qsTr("Profile of %1").arg(row.name)
            Accessible.description: displayText
            model: App.profiles.choices
            currentIndex: row.choice
            displayText: row.profile
            onActivated: index => App.profiles.choose(row.index, index)
        }
        DotButton {
            enabled: row.hasProfile
            text: qsTr("Forget")
            help: qsTr("No profile of its own from now on")
            Accessible.name: qsTr("Forget the profile of %1").arg(row.name)
            onClicked: App.profiles.forget(row.index)
        }
    }
}
