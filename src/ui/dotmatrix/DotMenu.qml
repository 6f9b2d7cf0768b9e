import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

T.Menu {
    id: control

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: control
    }

    implicitWidth: Math.max(20 * Theme.unit, contentItem.implicitWidth + leftPadding + rightPadding)
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: Theme.radius
    margins: Theme.unit
    overlap: 1

    delegate: DotMenuItem {}

    contentItem: ListView {
        implicitHeight: contentHeight
        implicitWidth: {
            let widest = 0;
            for (let index = 0; index < control.count; ++index)
                widest = Math.max(widest, control.itemAt(index)?.implicitWidth ?? 0);
            return widest;
        }
        model: control.contentModel
        interactive: height < contentHeight
        clip: interactive
        currentIndex: control.currentIndex
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: DotScrollBar {}
    }
    background: Rectangle {
        radius: 2 * Theme.radius
        color: Theme.card
        border.width: Theme.hairline
        border.color: Theme.edge
    }
}
