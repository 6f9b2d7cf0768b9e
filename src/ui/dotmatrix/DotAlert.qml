import QtQuick
import Quorbel.Dotmatrix

// A message that assistive technology announces. It paints nothing, but has the geometry of the item that shows
// the text.
AlertItem {
    visible: text !== ""
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
}
