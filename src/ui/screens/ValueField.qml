import QtQuick
import Quorbel.Dotmatrix

/// A value that looks like plain text and becomes a field with the focus. Return or leaving the field takes the
/// typed text, Escape drops it. An unreadable text leaves the value as it was.
DotTextField {
    id: field

    required property string valueText
    signal committed(real value)

    property bool dirty: false

    /// Converts text to a number; NaN for any other text. Each user of the field has its own.
    function parse(text: string): real {
        return NaN;
    }
    function takeTyped() {
        // A restored text has fewer digits than the value and must not replace it.
        const value = dirty && text !== valueText ? parse(text) : NaN;
        dropTyped();
        if (!isNaN(value))
            committed(value);
    }
    function dropTyped() {
        dirty = false;
        text = Qt.binding(() => field.valueText);
    }

    text: valueText
    leftPadding: Theme.unit / 2
    rightPadding: Theme.unit / 2
    implicitHeight: Theme.fieldHeight
    onTextEdited: dirty = true
    onAccepted: takeTyped()
    onActiveFocusChanged: {
        if (activeFocus) {
            selectAll();
        } else {
            takeTyped();
            deselect();
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: field.hovered || field.activeFocus ? Theme.card : "transparent"
        border.width: field.activeFocus ? 2 : field.hovered ? Theme.hairline : 0
        border.color: field.activeFocus ? Theme.signalInk : Theme.edge
    }
    // The window takes the focus back.
    Keys.onEscapePressed: event => {
        dropTyped();
        event.accepted = false;
    }
}
