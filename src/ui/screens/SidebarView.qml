import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The destinations in their groups. One of them is on the way of the Tab key, the arrows lead from one
/// to the next.
Rectangle {
    id: sidebar

    required property string destination
    signal chosen(string destination)
    signal aboutRequested

    function move(index) {
        const entry = rows.itemAt(index) as SidebarEntry;
        if (entry !== null)
            entry.takeFocus();
    }

    function choose(index) {
        (rows.itemAt(index) as SidebarEntry)?.chosen();
    }

    implicitWidth: 27 * Theme.unit
    color: Theme.paper
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Sidebar")

    Rectangle {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: Theme.hairline
        color: Theme.rule
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 1.5 * Theme.unit
        anchors.topMargin: Theme.unit
        spacing: 0

        Repeater {
            id: rows
            model: App.navigation
            delegate: SidebarEntry {
                Layout.fillWidth: true
                // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                // qmllint disable unqualified
                selected: sidebar.destination === rawValue
                onChosen: sidebar.chosen(rawValue)
                onMoveRequested: step => sidebar.move(index + step)
                // qmllint enable unqualified
            }
        }
        Item {
            Layout.fillHeight: true
        }
        DotButton {
            Layout.leftMargin: 0.5 * Theme.unit
            Layout.bottomMargin: Theme.unit
            flat: true
            text: qsTr("About Ostrafine")
            symbol: "info"
            help: qsTr("Version, licence and what a bug report needs")
            onClicked: sidebar.aboutRequested()
        }
        DotText {
            Layout.leftMargin: 1.5 * Theme.unit
            Layout.bottomMargin: Theme.unit
            text: "OSTRAFINE"
            dotSize: 2.5
            color: Theme.inkSoft
            Accessible.ignored: true
        }
    }
}
