import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A view of something larger. Its size comes from outside: a size that followed the content would follow a text
// that wraps to that size. With `takesKeys` it is a stop of the Tab key while it scrolls: the way to texts that
// have no control beside them. `PageScroll` then moves it by keys.
T.ScrollView {
    id: control

    property bool takesKeys: false
    property string accessibleName: ""
    readonly property bool scrollsDown: contentHeight > availableHeight + 1

    implicitWidth: 25 * Theme.unit
    implicitHeight: 25 * Theme.unit

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
