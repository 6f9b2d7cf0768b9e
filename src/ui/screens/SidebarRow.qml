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

    implicitHeight: 4.5 * Theme.unit
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
            Layout.leftMargin: 1.5 * Theme.unit
            name: row.symbol
            size: 2 * Theme.unit
            color: row.selected ? Theme.paper : Theme.ink
        }
        BodyText {
            Layout.fillWidth: true
            text: row.title
            elide: Text.ElideRight
            color: row.selected ? Theme.paper : Theme.ink
            Accessible.ignored: true
        }
        CaptionText {
            Layout.rightMargin: 1.5 * Theme.unit
            text: row.badge
            color: row.selected ? Theme.paper : Theme.inkSoft
            Accessible.ignored: true
        }
    }
}
