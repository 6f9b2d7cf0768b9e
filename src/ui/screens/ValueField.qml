import QtQuick
import Quorbel.Dotmatrix

/// A value that looks like plain text until it has the focus. Return or leaving the field commits the typed text,
/// Escape discards it; an unreadable text keeps the value.
DotTextField {
    id: field

    required property string valueText
    signal committed(real value)

    property bool dirty: false

    /// Converts text to a number, or to NaN if unreadable. Each user of the field overrides it.
    function parse(text: string): real {
        return NaN;
    }
    function takeTyped() {
        // Ignores a text equal to the displayed one, which has fewer digits than the value.
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
    // Passes the event on: the window takes the focus back.
    Keys.onEscapePressed: event => {
        dropTyped();
        event.accepted = false;
    }
}
