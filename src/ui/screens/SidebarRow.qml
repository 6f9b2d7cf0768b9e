import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix

/// One destination of the sidebar.
T.ItemDelegate {
    id: row

    required property string title
    required property string symbol
    required property string badge
    property bool selected: false
    /// Whether there is room for the symbol only; the title is then a tool tip.
    property bool folded: false

    implicitHeight: Math.max(Theme.rowHeight, implicitContentHeight + Theme.unit)
    hoverEnabled: true
    focusPolicy: Qt.ClickFocus
    activeFocusOnTab: selected || activeFocus
    Accessible.name: title
    Accessible.description: badge
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: row.clicked()

    background: Rectangle {
        radius: Theme.radius
        color: row.selected ? Theme.ink : row.hovered ? Theme.card : "transparent"

        FocusRing {
            visible: row.visualFocus
            distance: 2
        }
    }
    contentItem: RowLayout {
        spacing: 1.5 * Theme.unit

        Symbol {
            Layout.leftMargin: row.folded ? 0 : 1.5 * Theme.unit
            Layout.fillWidth: row.folded
            name: row.symbol
            size: 2 * Theme.unit
            color: row.selected ? Theme.paper : Theme.ink
        }
        BodyText {
            Layout.fillWidth: true
            visible: !row.folded
            text: row.title
            wrapMode: Text.Wrap
            lineHeight: 1
            color: row.selected ? Theme.paper : Theme.ink
            Accessible.ignored: true
        }
        CaptionText {
            Layout.rightMargin: 1.5 * Theme.unit
            visible: !row.folded
            text: row.badge
            wrapMode: Text.NoWrap
            color: row.selected ? Theme.paper : Theme.inkSoft
            Accessible.ignored: true
        }
    }

    DotToolTip {
        x: row.width + Theme.unit
        y: (row.height - height) / 2
        visible: row.folded && (row.hovered || row.visualFocus)
        text: row.badge === "" ? row.title : row.title + " · " + row.badge
    }
}
