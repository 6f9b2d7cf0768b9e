import QtQuick
import Quorbel.Dotmatrix

/// Actions on one preset other than applying it. Factory presets can only be duplicated.
DotMenu {
    id: menu

    property string presetId: ""
    property string presetName: ""
    property bool isUser: false
    signal renameRequested
    signal updateRequested
    signal duplicateRequested

    /// Opens below `button` with the first enabled entry selected, for the keyboard.
    function openBelow(row: PresetRow, button: Item) {
        presetId = row.presetId;
        presetName = row.name;
        isUser = row.isUser;
        popup(button, 0, button.height);
        currentIndex = isUser ? 0 : 2;
    }

    DotMenuItem {
        text: qsTr("Update with the current settings")
        symbol: "arrow.clockwise"
        enabled: menu.isUser
        onTriggered: menu.updateRequested()
    }
    DotMenuItem {
        text: qsTr("Rename…")
        enabled: menu.isUser
        onTriggered: menu.renameRequested()
    }
    DotMenuItem {
        text: qsTr("Duplicate")
        symbol: "plus"
        onTriggered: menu.duplicateRequested()
    }
}
