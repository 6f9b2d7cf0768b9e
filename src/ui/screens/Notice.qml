import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One message in the flow of the window, with what belongs to it below: copied or dismissed by the
/// user, gone when its cause is.
Rectangle {
    id: notice

    property string message: ""
    property var details: []
    property bool isWarning: false
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
    RowLayout {
        id: rows
        anchors.fill: parent
        anchors.margins: Theme.unit
        anchors.leftMargin: 2 * Theme.unit
        spacing: Theme.unit

        Rectangle {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1.5 * Theme.unit
            implicitWidth: Theme.unit
            implicitHeight: Theme.unit
            radius: Theme.unit / 2
            color: notice.isWarning ? Theme.warning : Theme.ink
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            Layout.bottomMargin: Theme.unit
            Layout.alignment: Qt.AlignTop
            spacing: Theme.unit / 2

            CopyableText {
                id: words
                Layout.fillWidth: true
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
            Layout.alignment: Qt.AlignTop
            flat: true
            text: qsTr("Copy")
            help: qsTr("Copies the message")
            onClicked: words.copyAll()
        }
        DotButton {
            Layout.alignment: Qt.AlignTop
            flat: true
            text: qsTr("Dismiss")
            help: qsTr("Hides the message; it returns if this happens again")
            onClicked: notice.dismissed()
        }
    }
}
