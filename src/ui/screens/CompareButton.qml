import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// Unprocessed sound for as long as it is held, with the mouse, the space bar or the key B. An
/// assistive technology, which cannot hold a button, switches it.
DotButton {
    text: qsTr("Compare")
    primary: App.engine.comparing
    enabled: App.engine.running
    help: qsTr("Hold to hear the unprocessed sound (B)")
    Accessible.checkable: true
    Accessible.checked: App.engine.comparing
    Accessible.onPressAction: App.engine.comparing = !App.engine.comparing
    onPressedChanged: App.engine.comparing = pressed
    onEnabledChanged: {
        if (!enabled)
            App.engine.comparing = false;
    }
}
