import QtQuick
import Quorbel.Dotmatrix

/// One numbered step of the guide. Its texts may mark words as bold with double asterisks.
Item {
    id: step

    required property int number
    required property string title
    required property var paragraphs
    property var points: []

    /// Where the texts begin, beside the number.
    readonly property real indent: Theme.indent

    implicitHeight: Math.max(figure.height, texts.height)

    DotText {
        id: figure
        text: step.number
        dotSize: 4
        color: Theme.signal
        Accessible.ignored: true
    }
    Column {
        id: texts
        x: step.indent
        width: Math.min(step.width - x, Theme.readingWidth)
        spacing: Theme.unit

        HeadingText {
            width: parent.width
            text: step.title
            Accessible.role: Accessible.Heading
            Accessible.name: step.number + ". " + step.title
        }
        Repeater {
            model: step.paragraphs
            delegate: BodyText {
                required property string modelData
                width: texts.width // qmllint disable unqualified
                text: modelData.replace(/&/g, "&amp;").replace(/\*\*(.+?)\*\*/g, "<b>$1</b>")
                textFormat: Text.StyledText
                wrapMode: Text.WordWrap
                Accessible.name: modelData.replace(/\*\*/g, "")
            }
        }
        Repeater {
            model: step.points
            delegate: Item {
                id: bullet
                required property string modelData
                // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                // qmllint disable unqualified
                width: texts.width
                height: point.height
                // qmllint enable unqualified

                Rectangle {
                    y: Theme.textUnit * 0.75
                    width: Theme.unit / 2
                    height: width
                    radius: width / 2
                    color: Theme.ink
                }
                BodyText {
                    id: point
                    x: 2 * Theme.unit
                    width: parent.width - x
                    text: bullet.modelData
                    wrapMode: Text.WordWrap
                }
            }
        }
    }
}
