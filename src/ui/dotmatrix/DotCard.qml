import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

// A raised panel with an optional heading above its content.
T.Pane {
    id: card

    property string title: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 2 * Theme.unit
    topPadding: title !== "" ? padding + 3 * Theme.textUnit : padding
    focusPolicy: Qt.NoFocus

    Accessible.name: title

    background: Rectangle {
        radius: 2 * Theme.radius
        color: Theme.card
        border.width: Theme.hairline
        border.color: Theme.rule

        PlainText {
            x: card.padding
            y: card.padding
            width: parent.width - 2 * card.padding
            visible: text !== ""
            text: card.title
            elide: Text.ElideRight
            color: Theme.inkSoft
            font.pixelSize: Theme.captionSize
            font.letterSpacing: 1
            font.capitalization: Font.AllUppercase
            Accessible.ignored: true
        }
    }
}
