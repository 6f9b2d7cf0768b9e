import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A screen that scrolls if the window is too low.
DotScrollView {
    id: page
    objectName: "screenPage"

    default property alias content: column.data
    /// Margin below the last card.
    readonly property real endMargin: 2 * Theme.unit
    /// Margin around the content that keeps focus rings at its edge from being clipped.
    readonly property real ringMargin: 5

    /// Height that an item below takes from the page; the cards keep their heights.
    property real covered: 0
    function scrollToEnd() {
        const view = contentItem as Flickable;
        view.contentY = Math.max(0, view.contentHeight - view.height);
    }

    takesKeys: true
    rightPadding: 2 * Theme.unit - ringMargin // holds the scroll bar
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
