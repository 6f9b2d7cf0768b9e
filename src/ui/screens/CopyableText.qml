import QtQuick
import Quorbel.Dotmatrix

/// A read-only text that can be selected and copied, such as an error message.
TextEdit {
    id: copyable

    property string accessibleName: ""

    /// Copies the whole text to the clipboard; clears the selection.
    function copyAll() {
        selectAll();
        copy();
        deselect();
    }

    readOnly: true
    selectByMouse: true
    selectByKeyboard: true
    activeFocusOnTab: text !== ""
    wrapMode: TextEdit.Wrap
    textFormat: TextEdit.PlainText
    color: Theme.ink
    selectionColor: Theme.signal
    selectedTextColor: Theme.onSignal
    font.family: Theme.fontFamily
    font.pixelSize: Theme.bodySize
    Accessible.role: Accessible.StaticText
    Accessible.name: copyable.text
    Accessible.description: copyable.accessibleName
    // Tab moves the focus on, because the text is read-only.
    KeyNavigation.priority: KeyNavigation.BeforeItem
    Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    Rectangle {
        anchors.fill: parent
        anchors.margins: -Theme.unit / 2
        visible: copyable.activeFocus
        color: "transparent"
        border.color: Theme.signal
        border.width: 2
        radius: Theme.radius
    }
}
