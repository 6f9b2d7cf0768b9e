import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// The head of a screen: its title, its counts as chips, and its actions at the right end.
ColumnLayout {
    id: header

    required property string title
    property string subtitle: ""
    property var chips: []
    default property alias actions: actionRow.data

    spacing: Theme.unit / 2

    WrapRow {
        Layout.fillWidth: true
        spacing: Theme.unit
        rowSpacing: Theme.unit

        PlainText {
            text: header.title
            color: Theme.ink
            font.family: Theme.fontFamily
            font.pixelSize: Theme.titleSize
            font.weight: Font.DemiBold
            // Reserves room for buttons, so that all titles have the same height.
            height: Math.max(implicitHeight, Theme.headHeight)
            verticalAlignment: Text.AlignVCenter
            rightPadding: Theme.unit
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Repeater {
            model: header.chips
            delegate: DotChip {
                required property string modelData
                text: modelData
            }
        }
        WrapRow {
            id: actionRow
            WrapRow.trailing: true
            spacing: Theme.unit
            rowSpacing: Theme.unit
        }
    }
    CaptionText {
        Layout.fillWidth: true
        visible: header.subtitle !== ""
        text: header.subtitle
        font.pixelSize: Theme.bodySize
    }
}
