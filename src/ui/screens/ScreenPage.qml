import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix

/// A screen that scrolls where the window is too low for it. An item that the keyboard reaches is
/// brought into view.
DotScrollView {
    id: page
    objectName: "screenPage"

    default property alias content: column.data
    /// Below the last card.
    readonly property real endMargin: 2 * Theme.unit
    /// Around the content, so that the focus ring of what stands at its edge is not cut off.
    readonly property real ringMargin: 5

    function reveal(item) {
        const flickable = page.contentItem as Flickable;
        if (flickable === null)
            return;
        const top = item.mapToItem(column.parent, 0, 0).y;
        const bottom = top + item.height;
        const margin = 2 * Theme.unit;
        if (top - margin < flickable.contentY)
            flickable.contentY = Math.max(0, top - margin);
        else if (bottom + margin > flickable.contentY + flickable.height)
            flickable.contentY = Math.min(Math.max(0, flickable.contentHeight - flickable.height),
                                          bottom + margin - flickable.height);
    }
    function scrollToEnd() {
        const flickable = page.contentItem as Flickable;
        flickable.contentY = Math.max(0, flickable.contentHeight - flickable.height);
    }
    function holds(item) {
        for (let at = item; at !== null; at = at.parent) {
            if (at === column)
                return true;
        }
        return false;
    }

    topPadding: -ringMargin
    rightPadding: 2 * Theme.unit - ringMargin // the scroll bar's
    contentWidth: availableWidth
    contentHeight: column.y + column.implicitHeight + endMargin

    Connections {
        target: page.Window.window
        function onActiveFocusItemChanged() {
            const item = page.Window.activeFocusItem;
            // A click lands on what is already in view.
            const clicked = (item as T.Control)?.visualFocus === false || (item as FocusArea)?.visualFocus === false;
            if (item !== null && !clicked && page.holds(item))
                page.reveal(item);
        }
    }

    ColumnLayout {
        id: column
        y: page.ringMargin
        width: page.availableWidth - page.ringMargin
        height: Math.max(implicitHeight, page.availableHeight - y - page.endMargin)
        spacing: 2 * Theme.unit
    }
}
