import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One numbered step of the guide. Its texts may mark words as bold with double asterisks.
RowLayout {
    id: step

    required property int number
    required property string title
    required property var paragraphs
    property var points: []

    spacing: 3 * Theme.unit

    DotText {
        Layout.alignment: Qt.AlignTop
        Layout.preferredWidth: 4 * Theme.unit
        text: step.number
        dotSize: 4
        color: Theme.signal
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.unit

        HeadingText {
            Layout.fillWidth: true
            text: step.title
            Accessible.name: step.number + ". " + step.title
        }
        Repeater {
            model: step.paragraphs
            delegate: BodyText {
                required property string modelData
                Layout.fillWidth: true
                Layout.maximumWidth: 88 * Theme.unit
                text: modelData
                textFormat: Text.MarkdownText
                wrapMode: Text.WordWrap
                Accessible.name: modelData.replace(/\*\*/g, "")
            }
        }
        Repeater {
            model: step.points
            delegate: RowLayout {
                id: bullet
                required property string modelData
                spacing: 1.5 * Theme.unit

                Rectangle {
                    Layout.alignment: Qt.AlignTop
                    Layout.topMargin: Theme.unit * 0.75
                    implicitWidth: Theme.unit / 2
                    implicitHeight: Theme.unit / 2
                    radius: Theme.unit / 4
                    color: Theme.ink
                }
                BodyText {
                    Layout.fillWidth: true
                    text: bullet.modelData
                    wrapMode: Text.WordWrap
                }
            }
        }
    }
}
