import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// The keys of the window (`WindowKeys`), and what each of them does.
GridLayout {
    id: list

    /// Each key is followed by what it does.
    readonly property list<string> lines: [
        qsTr("B, held"), qsTr("Compare"),
        qsTr("Ctrl+Return"), qsTr("Start or stop processing"),
        qsTr("Ctrl+1 to Ctrl+9"), qsTr("Screens, in the order of the sidebar"),
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
