import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// Asks for the name of a preset; rejects blank names.
DotDialog {
    id: sheet

    property string suggestion: ""
    signal named(string name)

    rejectText: qsTr("Cancel")
    acceptEnabled: App.presets.canSave(name.text)
    onAboutToShow: name.text = suggestion
    onOpened: {
        name.forceActiveFocus(Qt.PopupFocusReason);
        name.selectAll();
    }
    onAccepted: named(name.text)

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
