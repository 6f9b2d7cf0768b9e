import QtQuick
import QtQuick.Templates as T

// Restores the keyboard focus when a popup closes, unless another item has taken it. Up to Qt 6.4 a popup over a
// plain window leaves no item with the focus.
Connections {
    id: back

    required property T.Popup popup
    property Item before: null

    target: popup
    function onAboutToShow() {
        before = popup.parent?.Window.activeFocusItem ?? null;
    }
    function onClosed() {
        const window = popup.parent?.Window.window ?? null;
        if (before !== null && window !== null && (window.activeFocusItem === null || window.activeFocusItem === window.contentItem))
            before.forceActiveFocus(Qt.PopupFocusReason);
        before = null;
    }
}
