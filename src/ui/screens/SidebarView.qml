import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The destinations in their groups. The Tab key reaches the selected one; the arrow keys move between them.
Rectangle {
    id: sidebar

    required property string destination
    /// Shows symbols only.
    property bool folded: false
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

    implicitWidth: folded ? Theme.rowHeight + 3 * Theme.unit : Theme.sidebarWidth
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
    DotScrollView {
        id: scroll
        anchors.fill: parent
        anchors.rightMargin: Theme.hairline
        contentWidth: availableWidth
        contentHeight: column.height

        ColumnLayout {
            id: column
            x: 1.5 * Theme.unit
            width: scroll.availableWidth - 3 * Theme.unit
            height: Math.max(implicitHeight, scroll.availableHeight)
            spacing: 0

            Repeater {
                id: rows
                model: App.navigation
                delegate: SidebarEntry {
                    Layout.fillWidth: true
                    // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                    // qmllint disable unqualified
                    Layout.topMargin: index === 0 ? Theme.unit : 0
                    selected: sidebar.destination === rawValue
                    folded: sidebar.folded
                    onChosen: sidebar.chosen(rawValue)
                    onMoveRequested: step => sidebar.move(index + step)
                    // qmllint enable unqualified
                }
            }
            Item {
                Layout.fillHeight: true
            }
            DotText {
                Layout.leftMargin: 1.5 * Theme.unit
                Layout.topMargin: 2 * Theme.unit
                visible: !sidebar.folded
                text: "OSTRAFINE"
                dotSize: 2.5
                color: Theme.inkSoft
                Accessible.ignored: true
            }
            DotButton {
                id: about
                Layout.leftMargin: 0.5 * Theme.unit
                Layout.maximumWidth: column.width - Theme.unit
                Layout.topMargin: Theme.unit
                Layout.bottomMargin: Theme.unit
                visible: !sidebar.folded
                flat: true
                text: qsTr("About Ostrafine")
                symbol: "info"
                help: qsTr("Version, licence and what a bug report needs")
                onClicked: sidebar.aboutRequested()
            }
            DotIconButton {
                Layout.fillWidth: true
                Layout.topMargin: Theme.unit
                Layout.bottomMargin: Theme.unit
                visible: sidebar.folded
                symbol: "info"
                accessibleName: about.text
                onClicked: sidebar.aboutRequested()
            }
        }
    }
}
