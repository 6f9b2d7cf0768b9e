import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// Scrolls all views around the focused item until the item is visible. One per window.
Item {
    id: follower

    readonly property real margin: 2 * Theme.unit

    // Returns the scroll position that shows the whole item, or its start if the view is too short.
    function shifted(from, length, itemFrom, itemLength, first, last) {
        const atLeast = Math.max(from, itemFrom + itemLength + margin - length);
        return Math.max(first, Math.min(atLeast, itemFrom - margin, Math.max(first, last - length)));
    }
    function reveal(item) {
        // From the inside out: an inner view moves the item within the outer one.
        for (let at = item.parent; at !== null; at = at.parent) {
            const view = at as Flickable;
            if (view === null)
                continue;
            const place = item.mapToItem(view.contentItem, 0, 0);
            view.contentX = shifted(view.contentX, view.width, place.x, item.width, view.originX, view.originX + view.contentWidth);
            view.contentY = shifted(view.contentY, view.height, place.y, item.height, view.originY, view.originY + view.contentHeight);
        }
    }

    Connections {
        target: follower.Window.window
        function onActiveFocusItemChanged() {
            const item = follower.Window.activeFocusItem;
            // A clicked item is already visible.
            const clicked = (item as T.Control)?.visualFocus === false || (item as FocusArea)?.visualFocus === false;
            if (item !== null && !clicked)
                follower.reveal(item);
        }
    }
}
