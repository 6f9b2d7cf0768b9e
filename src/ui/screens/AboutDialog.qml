import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// About the program: version, purpose, licence, keys, and the versions for a bug report.
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
        // The keys of the window (`WindowKeys`) and their effects.
        GridLayout {
            id: list

            Layout.fillWidth: true
            /// Keys and effects, alternating.
            readonly property list<string> lines: [
                qsTr("B, held"), qsTr("Compare"),
                qsTr("Ctrl+Return"), qsTr("Start or stop processing"),
                qsTr("Ctrl+1 to Ctrl+9, Ctrl+0"), qsTr("Screens, in the order of the sidebar"),
                qsTr("Ctrl+Z"), qsTr("Undo"),
                qsTr("Ctrl+Shift+Z, Ctrl+Y"), qsTr("Redo"),
                qsTr("F5"), qsTr("Refresh device list"),
                qsTr("Ctrl+Q"), qsTr("Quit")
            ]

            columns: 2
            columnSpacing: 3 * Theme.unit
            rowSpacing: Theme.unit / 2

            HeadingText {
                Layout.columnSpan: 2
                Layout.fillWidth: true
                text: qsTr("Keys")
            }
            Repeater {
                model: list.lines
                delegate: BodyText {
                    required property string modelData
                    required property int index
                    Layout.preferredWidth: index % 2 === 0 ? Math.min(implicitWidth, Theme.labelWidth) : -1
                    Layout.minimumWidth: 0
                    Layout.fillWidth: index % 2 === 1
                    Layout.alignment: Qt.AlignTop
                    wrapMode: Text.Wrap
                    text: modelData
                    color: index % 2 === 0 ? Theme.ink : Theme.inkSoft
                }
            }
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
