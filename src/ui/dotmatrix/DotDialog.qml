import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A modal sheet in the middle of the window: title, content, and two buttons at the foot.
T.Dialog {
    id: dialog

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: dialog
    }

    property string acceptText: "OK"
    property string rejectText: "Cancel" // none: no such button
    property bool acceptEnabled: true

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 3) : 0
    implicitWidth: Math.max(50 * Theme.unit, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitHeaderHeight + implicitContentHeight + implicitFooterHeight + topPadding + bottomPadding
    modal: true
    focus: true
    margins: 2 * Theme.unit
    horizontalPadding: 3 * Theme.unit
    topPadding: 2 * Theme.unit
    bottomPadding: 0
    closePolicy: T.Popup.CloseOnEscape

    T.Overlay.modal: Rectangle {
        color: Theme.veil
    }

    background: Rectangle {
        radius: 2 * Theme.radius
        color: Theme.card
        border.width: Theme.hairline
        border.color: Theme.edge
    }
    header: PlainText {
        visible: dialog.title !== ""
        leftPadding: 3 * Theme.unit
        rightPadding: 3 * Theme.unit
        topPadding: 3 * Theme.unit
        text: dialog.title
        color: Theme.ink
        font.pixelSize: Theme.headingSize
        font.bold: true
        elide: Text.ElideRight
    }
    footer: Item {
        implicitHeight: Theme.controlHeight + 6 * Theme.unit

        RowLayout {
            anchors.right: parent.right
            anchors.rightMargin: 3 * Theme.unit
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 3 * Theme.unit
            spacing: Theme.unit

            DotButton {
                objectName: "dialogReject"
                visible: dialog.rejectText !== ""
                text: dialog.rejectText
                onClicked: dialog.reject()
            }
            DotButton {
                objectName: "dialogAccept"
                text: dialog.acceptText
                primary: true
                enabled: dialog.acceptEnabled
                onClicked: dialog.accept()
            }
        }
    }
}
