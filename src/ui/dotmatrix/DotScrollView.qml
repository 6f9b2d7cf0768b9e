import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A part of something larger. Its size comes from outside: one that followed the content would follow a
// text that wraps to the size, and so itself. With `takesKeys` it is a stop of the Tab key while it scrolls, and
// the arrow keys, Page Up, Page Down, Home and End move it: the way to texts that have no control beside them.
T.ScrollView {
    id: control

    property bool takesKeys: false
    property string accessibleName: ""
    readonly property bool scrollsDown: contentHeight > availableHeight + 1

    function scrollBy(pages) {
        const view = contentItem as Flickable;
        view.contentY = Math.max(0, Math.min(view.contentY + pages * view.height, view.contentHeight - view.height));
    }
    implicitWidth: 25 * Theme.unit
    implicitHeight: 25 * Theme.unit

    Keys.onPressed: event => {
        const steps = { [Qt.Key_Up]: -0.2, [Qt.Key_Down]: 0.2, [Qt.Key_PageUp]: -0.9, [Qt.Key_PageDown]: 0.9, [Qt.Key_Home]: -Infinity, [Qt.Key_End]: Infinity };
        const step = steps[event.key];
        if (step === undefined || !control.takesKeys || !control.scrollsDown || event.modifiers & ~Qt.KeypadModifier)
            return;
        control.scrollBy(step);
        event.accepted = true;
    }

    // Not among the contents: they would be taken before the scroll bars are there, which then show no size.
    readonly property Item grip: FocusArea {
        id: grip

        parent: control
        anchors.fill: parent
        z: -1
        activeFocusOnTab: control.takesKeys && control.scrollsDown
        Accessible.role: Accessible.Pane
        Accessible.name: control.accessibleName
        Accessible.focusable: true
        Accessible.ignored: !activeFocusOnTab

        FocusRing {
            visible: grip.visualFocus
            distance: 0
        }
    }
    T.ScrollBar.vertical: DotScrollBar {
        parent: control
        x: control.mirrored ? 0 : control.width - width
        y: control.topPadding
        height: control.availableHeight
        active: control.T.ScrollBar.horizontal.active
        stepSize: 8 * Theme.unit / Math.max(1, control.contentHeight) // of an arrow key
    }
    T.ScrollBar.horizontal: DotScrollBar {
        parent: control
        x: control.leftPadding
        y: control.height - height
        width: control.availableWidth
        active: control.T.ScrollBar.vertical.active
    }
}
