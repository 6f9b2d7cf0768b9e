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

    function move(index) {
        if (index >= 0 && index < rows.count)
            rows.itemAt(index).takeFocus();
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
            delegate: ColumnLayout {
                id: entry

                required property int index
                required property string rawValue
                required property string title
                required property string symbol
                required property string badge
                required property string group
                required property bool startsGroup

                function takeFocus() {
                    row.forceActiveFocus(Qt.TabFocusReason);
                    sidebar.chosen(rawValue);
                }

                Layout.fillWidth: true
                spacing: 0

                CaptionText {
                    Layout.leftMargin: 1.5 * Theme.unit
                    Layout.topMargin: (entry.index > 0 ? 3 : 1) * Theme.unit
                    Layout.bottomMargin: Theme.unit
                    visible: entry.startsGroup
                    text: entry.group
                    Accessible.role: Accessible.Heading
                }
                SidebarRow {
                    id: row
                    Layout.fillWidth: true
                    title: entry.title
                    symbol: entry.symbol
                    badge: entry.badge
                    selected: sidebar.destination === entry.rawValue
                    onClicked: sidebar.chosen(entry.rawValue)
                    Keys.onUpPressed: sidebar.move(entry.index - 1)
                    Keys.onDownPressed: sidebar.move(entry.index + 1)
                }
            }
        }
        Item {
            Layout.fillHeight: true
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
