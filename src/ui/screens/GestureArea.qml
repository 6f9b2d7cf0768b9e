import QtQuick
import Quorbel.Model

/// Laid over a slider or knob: everything between press and release is one step of the history. It lies on top, so
/// that the step has begun when the control sees the press, and lets all events through.
Item {
    anchors.fill: parent
    z: 1

    PointHandler {
        id: pointer
        onActiveChanged: {
            if (active)
                App.history.beginGesture();
            else
                App.history.endGesture();
        }
    }
    Component.onDestruction: {
        if (pointer.active)
            App.history.endGesture();
    }
}
