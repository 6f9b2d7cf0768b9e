import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A screen that scrolls where the window is too low for it.
DotScrollView {
    id: page
    objectName: "screenPage"

    default property alias content: column.data
    /// Below the last card.
    readonly property real endMargin: 2 * Theme.unit
    /// Around the content, so that the focus ring of an item at its edge is not cut off.
    readonly property real ringMargin: 5

    /// Height of an item over the page's lower end, which takes no room from the cards.
    property real covered: 0
    function scrollToEnd() {
        const view = contentItem as Flickable;
        view.contentY = Math.max(0, view.contentHeight - view.height);
    }

    takesKeys: true
    rightPadding: 2 * Theme.unit - ringMargin // the scroll bar's
    contentWidth: availableWidth
    contentHeight: column.y + column.height + endMargin

    ColumnLayout {
        id: column
        y: page.ringMargin
        width: page.availableWidth - page.ringMargin
        height: Math.max(implicitHeight, page.availableHeight + page.covered - y - page.endMargin)
        spacing: 2 * Theme.unit
    }
}
