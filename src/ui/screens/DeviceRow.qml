import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix

/// One output device; choosing it makes it the output.
T.RadioDelegate {
    id: row

    required property int index
    required property string uid
    required property string name
    required property bool isCurrent
    required property bool isDefault

    implicitHeight: Math.max(7 * Theme.unit, implicitContentHeight + 2 * Theme.unit)
    checked: isCurrent
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.name: name
    Accessible.description: (isCurrent ? qsTr("In use") : "") + (isCurrent && isDefault ? ", " : "") + (isDefault ? qsTr("System default") : "")
    Accessible.onPressAction: row.clicked()
    Accessible.onToggleAction: row.clicked()

    background: Rectangle {
        color: row.down || row.hovered ? Theme.paper : "transparent"

        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            visible: row.index > 0
            height: 1
            color: Theme.rule
        }
        FocusRing {
            visible: row.visualFocus
            distance: -2
        }
    }
    contentItem: RowLayout {
        spacing: 2 * Theme.unit

        Item {
            implicitWidth: 0
        }
        Symbol {
            name: row.isCurrent ? "hifispeaker.2.fill" : "hifispeaker.2"
            size: 3 * Theme.unit
            color: row.isCurrent ? Theme.ink : Theme.inkSoft
        }
        WrapRow {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit / 2

            HeadingText {
                WrapRow.fills: true
                WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                text: row.name
                Accessible.ignored: true
            }
            CaptionText {
                visible: row.isDefault
                text: qsTr("System default")
                Accessible.ignored: true
            }
            CaptionText {
                visible: row.isCurrent
                text: qsTr("In use")
                color: Theme.signalInk
                font.weight: Font.DemiBold
                Accessible.ignored: true
            }
        }
        Rectangle {
            Layout.rightMargin: 2 * Theme.unit
            implicitWidth: Theme.unit
            implicitHeight: Theme.unit
            radius: Theme.unit / 2
            color: row.isCurrent ? Theme.signal : Theme.dot
        }
    }
}
