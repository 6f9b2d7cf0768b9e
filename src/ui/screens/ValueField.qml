import QtQuick
import Quorbel.Dotmatrix

/// A value that reads as plain text and becomes a field once it is clicked or reached. What is typed
/// is taken with Return or on leaving; what cannot be read leaves the value as it was.
DotTextField {
    id: field

    required property string valueText
    signal committed(real value)

    property bool dirty: false

    /// From text to number, NaN for a text that is none. The caller has its own.
    function parse(text: string): real {
        return NaN;
    }
    function takeTyped() {
        if (!dirty)
            return;
        dirty = false;
        const value = parse(text);
        if (!isNaN(value))
            committed(value);
        text = Qt.binding(() => field.valueText);
    }

    text: valueText
    leftPadding: Theme.unit / 2
    rightPadding: Theme.unit / 2
    implicitHeight: 3 * Theme.unit
    onTextEdited: dirty = true
    onAccepted: {
        takeTyped();
        selectAll();
    }
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
    Keys.onEscapePressed: event => {
        if (dirty) {
            dirty = false;
            text = Qt.binding(() => field.valueText);
            selectAll();
        } else {
            event.accepted = false;
        }
    }
}
