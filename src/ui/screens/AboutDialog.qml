import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// What the program is, its keys, its version and licence, and the versions that a bug report needs.
DotDialog {
    id: dialog

    property bool copied: false

    title: qsTr("About Ostrafine")
    acceptText: qsTr("Close")
    rejectText: ""
    onAboutToShow: copied = false
    onOpened: copyButton.forceActiveFocus(Qt.PopupFocusReason)

    ColumnLayout {
        anchors.fill: parent
        spacing: 2 * Theme.unit
        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.title

        DotText {
            text: "OSTRAFINE"
            dotSize: 4
            Accessible.ignored: true
        }
        HeadingText {
            Layout.fillWidth: true
            text: qsTr("Version %1").arg(App.about.version)
        }
        BodyText {
            Layout.fillWidth: true
            text: qsTr("Shapes everything the computer plays, live.")
            wrapMode: Text.WordWrap
        }
        BodyText {
            Layout.fillWidth: true
            text: qsTr("Free software under the GNU General Public License, version 3 or later, without any warranty.")
            wrapMode: Text.WordWrap
        }
        ShortcutList {
            Layout.fillWidth: true
        }
        CopyableText {
            id: report
            Layout.fillWidth: true
            text: App.about.report
            accessibleName: qsTr("Versions")
            color: Theme.inkSoft
        }
        DotButton {
            id: copyButton
            Layout.fillWidth: implicitWidth > parent.width
            text: dialog.copied ? qsTr("Copied") : qsTr("Copy for a bug report")
            onClicked: {
                report.copyAll();
                dialog.copied = true;
            }
        }
    }
}
