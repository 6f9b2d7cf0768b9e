pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A choice from a list. `title` precedes the current choice in the box. Adjacent choices with the same value of
// the role `groupRole` form a group with that value as its heading. `currentMarked`: ticks the current choice.
T.ComboBox {
    id: control

    property string title: ""
    property string accessibleName: ""
    property string groupRole: ""
    property bool currentMarked: true

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: 1.5 * Theme.unit
    rightPadding: 4 * Theme.unit
    spacing: Theme.unit
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    opacity: enabled ? 1 : Theme.disabledOpacity

    Accessible.name: accessibleName !== "" ? accessibleName : title
    Accessible.description: displayText
    Accessible.onPressAction: {
        forceActiveFocus();
        if (popup.visible)
            popup.close();
        else
            popup.open();
    }

    // One choice of the open box; the first of a group has the heading above it. It looks like a menu item, but is
    // none: up to Qt 6.4 the accessible role of a control cannot be set.
    delegate: T.ItemDelegate {
        id: line

        required property var model
        required property int index
        readonly property bool isMarked: control.currentMarked && control.currentIndex === index

        readonly property string heading: ListView.section !== ListView.previousSection ? ListView.section : ""
        readonly property string symbol: isMarked ? "checkmark" : ""

        width: ListView.view.width
        text: control.textRole !== "" ? (model[control.textRole] ?? model.modelData?.[control.textRole] ?? "") : (model.modelData ?? "")
        highlighted: control.highlightedIndex === index
        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        implicitHeight: Math.max(Theme.controlHeight, contentItem.implicitHeight + 1.5 * Theme.unit) + topInset
        topInset: group.visible ? group.height : 0
        topPadding: topInset
        containmentMask: background
        leftPadding: Theme.unit
        rightPadding: 2 * Theme.unit
        spacing: Theme.unit
        font.pixelSize: Theme.bodySize
        hoverEnabled: true

        Accessible.name: text
        Accessible.selectable: true
        Accessible.selected: isMarked
        Accessible.onPressAction: clicked()

        contentItem: LabelFace {
            symbol: line.symbol
            keepSymbolSpace: true
            text: line.text
            font: line.font
            spacing: line.spacing
            color: line.highlighted ? Theme.card : Theme.ink
        }
        background: Rectangle {
            radius: Theme.radius
            color: line.highlighted ? Theme.ink : "transparent"
        }

        PlainText {
            id: group

            visible: text !== ""
            width: line.width
            leftPadding: Theme.unit
            topPadding: Theme.unit
            bottomPadding: Theme.unit / 2
            text: line.heading
            color: Theme.inkSoft
            font.pixelSize: Theme.captionSize
            font.letterSpacing: 1
            font.capitalization: Font.AllUppercase
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    indicator: Symbol {
        x: control.width - width - 1.5 * Theme.unit
        y: (control.height - height) / 2
        size: 12
        name: "chevron.down"
        color: Theme.inkSoft
    }
    contentItem: LabelFace {
        caption: control.title
        text: control.displayText
        font: control.font
        spacing: control.spacing
        color: Theme.ink
        elides: true // the list shows the whole text
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.down ? Theme.pressed : Theme.card
        border.width: Theme.hairline
        border.color: control.hovered || control.down ? Theme.ink : Theme.edge

        FocusRing {
            visible: control.visualFocus
        }
    }
    popup: T.Popup {
        y: control.height + Theme.radius
        // A longer choice wraps into a second line.
        width: Math.min(Math.max(control.width, 24 * Theme.textUnit), control.Window.width - 2 * margins)
        height: Math.min(contentItem.implicitHeight + topPadding + bottomPadding, control.Window.height - 4 * Theme.unit)
        padding: Theme.radius
        margins: Theme.unit

        contentItem: ListView {
            implicitHeight: contentHeight
            clip: true
            model: control.delegateModel
            currentIndex: control.highlightedIndex
            highlightMoveDuration: 0
            boundsBehavior: Flickable.StopAtBounds
            section.property: control.groupRole
            T.ScrollBar.vertical: DotScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: control.Accessible.name
        }
        background: Rectangle {
            radius: 2 * Theme.radius
            color: Theme.card
            border.width: Theme.hairline
            border.color: Theme.edge
        }
    }
}
