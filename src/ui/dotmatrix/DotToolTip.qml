import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

T.ToolTip {
    id: control

    /// Aligns with the left edge of the parent, for parents much wider than their text.
    property bool atStart: false

    x: parent && !atStart ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: -implicitHeight - Theme.radius
    implicitWidth: Math.min(contentItem.implicitWidth + leftPadding + rightPadding, 45 * Theme.textUnit, (parent?.Window.width ?? Infinity) - 2 * margins)
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    margins: Theme.radius
    horizontalPadding: Theme.unit
    verticalPadding: Theme.radius
    delay: 600
    timeout: 6000
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent
    font.pixelSize: Theme.captionSize

    contentItem: PlainText {
        text: control.text
        font: control.font
        wrapMode: Text.Wrap
        color: Theme.card
    }
    background: Rectangle {
        radius: Theme.radius
        color: Theme.ink
    }
}
