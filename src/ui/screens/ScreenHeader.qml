import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// The head of a screen: its title, what it counts as chips, and its actions at the right end.
ColumnLayout {
    id: header

    required property string title
    property string subtitle: ""
    property var chips: []
    default property alias actions: actionRow.data

    spacing: Theme.unit / 2

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.unit

        PlainText {
            text: header.title
            color: Theme.ink
            font.family: Theme.fontFamily
            font.pixelSize: Theme.titleSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Item {
            implicitWidth: Theme.unit
        }
        Repeater {
            model: header.chips
            delegate: DotChip {
                required property string modelData
                text: modelData
            }
        }
        Item {
            Layout.fillWidth: true
            implicitHeight: 5 * Theme.unit // as high as a button, so that every title stands alike
        }
        RowLayout {
            id: actionRow
            spacing: Theme.unit
        }
    }
    CaptionText {
        visible: header.subtitle !== ""
        text: header.subtitle
        font.pixelSize: Theme.bodySize
    }
}
