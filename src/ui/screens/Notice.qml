import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One inline message with its details below. The user can copy and dismiss it; it disappears with its cause.
Rectangle {
    id: notice

    property string message: ""
    property var details: []
    property bool isWarning: false
    /// Label of a button that solves the problem; empty: no button.
    property string action: ""
    property string actionHelp: ""
    signal acted
    signal dismissed

    visible: message !== ""
    implicitHeight: rows.implicitHeight + 2 * Theme.unit
    color: Theme.card
    radius: Theme.radius
    border.width: 1
    border.color: isWarning ? Theme.warning : Theme.rule

    DotAlert {
        objectName: "noticeAlert"
        anchors.fill: parent
        text: notice.message
    }
    Rectangle {
        x: 2 * Theme.unit
        y: Theme.unit + (Theme.controlHeight - height) / 2
        width: Theme.unit
        height: Theme.unit
        radius: Theme.unit / 2
        color: notice.isWarning ? Theme.warning : Theme.ink
    }
    WrapRow {
        id: rows
        x: 4 * Theme.unit
        y: Theme.unit
        width: notice.width - x - Theme.unit
        alignTop: true
        spacing: Theme.unit
        rowSpacing: Theme.unit

        ColumnLayout {
            WrapRow.fills: true
            WrapRow.minimumWidth: Math.min(words.implicitWidth, 40 * Theme.textUnit)
            spacing: Theme.unit / 2

            CopyableText {
                id: words
                Layout.fillWidth: true
                topPadding: (Theme.controlHeight - Theme.fieldHeight) / 2 + Theme.unit / 2 // level with the buttons
                text: notice.message
            }
            CopyableText {
                id: more
                Layout.fillWidth: true
                visible: notice.details.length > 0
                text: notice.details.join("\n")
                color: Theme.inkSoft
                font.pixelSize: Theme.captionSize
                accessibleName: qsTr("Details")
            }
        }
        DotButton {
            visible: notice.action !== ""
            text: notice.action
            help: notice.actionHelp
            onClicked: notice.acted()
        }
        DotButton {
            flat: true
            text: qsTr("Copy")
            help: qsTr("Copies the message")
            onClicked: words.copyAll()
        }
        DotButton {
            flat: true
            text: qsTr("Dismiss")
            help: qsTr("Hides the message; it returns if this happens again")
            onClicked: notice.dismissed()
        }
    }
}
