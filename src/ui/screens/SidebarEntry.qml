import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix

/// A destination in the sidebar. The first one of a group has the group's caption above it.
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
    /// Shows symbols only.
    property bool folded: false
    signal chosen
    /// Requests the keyboard focus for the entry `step` places away.
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
    // Spacer item: a margin bound to the caption's visibility would be applied too late.
    Item {
        visible: entry.folded && entry.startsGroup && entry.index > 0
        implicitHeight: 2 * Theme.unit
    }
    T.ItemDelegate {
        id: row

        Layout.fillWidth: true
        implicitHeight: Math.max(Theme.rowHeight, implicitContentHeight + Theme.unit)
        hoverEnabled: true
        focusPolicy: Qt.ClickFocus
        activeFocusOnTab: entry.selected || activeFocus
        Accessible.name: entry.title
        Accessible.description: entry.badge
        Accessible.selectable: true
        Accessible.selected: entry.selected
        Accessible.onPressAction: row.clicked()
        onClicked: entry.chosen()
        Keys.onUpPressed: entry.moveRequested(-1)
        Keys.onDownPressed: entry.moveRequested(1)

        background: Rectangle {
            radius: Theme.radius
            color: entry.selected ? Theme.ink : row.hovered ? Theme.card : "transparent"

            FocusRing {
                visible: row.visualFocus
                distance: 2
            }
        }
        contentItem: RowLayout {
            spacing: 1.5 * Theme.unit

            Symbol {
                Layout.leftMargin: entry.folded ? 0 : 1.5 * Theme.unit
                Layout.fillWidth: entry.folded
                name: entry.symbol
                size: 2 * Theme.unit
                color: entry.selected ? Theme.paper : Theme.ink
            }
            BodyText {
                Layout.fillWidth: true
                visible: !entry.folded
                text: entry.title
                wrapMode: Text.Wrap
                lineHeight: 1
                color: entry.selected ? Theme.paper : Theme.ink
                Accessible.ignored: true
            }
            CaptionText {
                Layout.rightMargin: 1.5 * Theme.unit
                visible: !entry.folded
                text: entry.badge
                wrapMode: Text.NoWrap
                color: entry.selected ? Theme.paper : Theme.inkSoft
                Accessible.ignored: true
            }
        }

        DotToolTip {
            x: row.width + Theme.unit
            y: (row.height - height) / 2
            visible: entry.folded && (row.hovered || row.visualFocus)
            text: entry.badge === "" ? entry.title : entry.title + " · " + entry.badge
        }
    }
}
