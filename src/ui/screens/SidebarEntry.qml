import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A destination in the sidebar, below the caption of the group that it begins, if it does.
ColumnLayout {
    id: entry

    required property int index
    required property string rawValue
    required property string title
    required property string symbol
    required property string badge
    required property string group
    required property bool startsGroup

    property bool selected: false
    /// Whether there is room for symbols only.
    property bool folded: false
    signal chosen
    /// The keyboard goes to another entry, counted from this one.
    signal moveRequested(int step)

    function takeFocus() {
        row.forceActiveFocus(Qt.TabFocusReason);
        chosen();
    }

    spacing: 0

    CaptionText {
        Layout.fillWidth: true
        Layout.leftMargin: 1.5 * Theme.unit
        Layout.topMargin: (entry.index > 0 ? 3 : 1) * Theme.unit
        Layout.bottomMargin: Theme.unit
        visible: entry.startsGroup && !entry.folded
        text: entry.group
        Accessible.role: Accessible.Heading
    }
    SidebarRow {
        id: row
        Layout.fillWidth: true
        Layout.topMargin: entry.folded && entry.startsGroup && entry.index > 0 ? 2 * Theme.unit : 0
        folded: entry.folded
        title: entry.title
        symbol: entry.symbol
        badge: entry.badge
        selected: entry.selected
        onClicked: entry.chosen()
        Keys.onUpPressed: entry.moveRequested(-1)
        Keys.onDownPressed: entry.moveRequested(1)
    }
}
