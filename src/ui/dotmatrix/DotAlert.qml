import QtQuick
import Quorbel.Dotmatrix

// A message that assistive technology announces. It shows nothing, but has the place and size of the item that
// shows the text.
AlertItem {
    visible: text !== ""
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
}
