import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A part of something larger. Its size comes from outside: one that followed the content would follow a
// text that wraps to the size, and so itself.
T.ScrollView {
    id: control

    implicitWidth: 25 * Theme.unit
    implicitHeight: 25 * Theme.unit

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
