import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A modal sheet in the middle of the window: title, content, and two buttons at the bottom.
T.Dialog {
    id: dialog

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: dialog
    }

    property string acceptText: "OK"
    property string rejectText: "Cancel" // empty: no such button
    property bool acceptEnabled: true
    // Scrolls if the window is too low.
    default property alias body: holder.data

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 3) : 0
    width: Math.min(Math.max(50 * Theme.textUnit, Math.min(holder.implicitWidth, 72 * Theme.textUnit) + leftPadding + rightPadding), (parent?.width ?? Infinity) - 2 * margins)
    height: Math.min(implicitHeaderHeight + holder.implicitHeight + implicitFooterHeight + topPadding + bottomPadding, (parent?.height ?? Infinity) - 2 * margins)
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
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
    }
    contentItem: view

    // Separate from `contentItem`, which would be set later than its content.
    readonly property DotScrollView view: DotScrollView {
        focus: true
        contentWidth: availableWidth
        contentHeight: holder.implicitHeight

        Item {
            id: holder

            function largest(property) {
                let size = 0;
                for (let index = 0; index < children.length; ++index)
                    size = Math.max(size, children[index][property]);
                return size;
            }

            implicitWidth: largest("implicitWidth")
            implicitHeight: largest("implicitHeight")
            width: dialog.view.availableWidth
            height: implicitHeight
        }
    }
    footer: Item {
        implicitHeight: buttons.implicitHeight + 6 * Theme.unit

        WrapRow {
            id: buttons

            anchors.left: parent.left
            anchors.leftMargin: 3 * Theme.unit
            anchors.right: parent.right
            anchors.rightMargin: 3 * Theme.unit
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 3 * Theme.unit
            spacing: Theme.unit
            rowSpacing: Theme.unit

            Item {
                WrapRow.fills: true
            }
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
