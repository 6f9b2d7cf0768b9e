import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// Asks for the name under which the current settings become a preset of the user's.
DotDialog {
    id: sheet

    title: qsTr("Save Preset")
    acceptText: qsTr("Save")
    rejectText: qsTr("Cancel")
    acceptEnabled: App.presets.canSave(name.text)
    onAboutToShow: name.text = qsTr("My Preset")
    onOpened: {
        name.forceActiveFocus(Qt.PopupFocusReason);
        name.selectAll();
    }
    onAccepted: App.presets.save(name.text)

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.unit
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title

        CaptionText {
            text: qsTr("Name")
            Accessible.ignored: true
        }
        DotTextField {
            id: name
            Layout.fillWidth: true
            accessibleName: qsTr("Name")
            onAccepted: {
                if (sheet.acceptEnabled)
                    sheet.accept();
            }
        }
    }
}
