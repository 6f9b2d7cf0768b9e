import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A scrollable view. Its size is set from outside: an implicit size from wrapping text would depend on itself.
// With `takesKeys` the Tab key stops at a view that overflows, and `PageScroll` scrolls it by keys: texts without
// a control beside them are reachable only this way.
T.ScrollView {
    id: control

    property bool takesKeys: false
    property string accessibleName: ""
    readonly property bool scrollsDown: contentHeight > availableHeight + 1

    implicitWidth: 25 * Theme.unit
    implicitHeight: 25 * Theme.unit

    // Not a content child: contents are set before the scroll bars exist, which would then show no size.
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
