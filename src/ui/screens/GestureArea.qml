import QtQuick
import Quorbel.Model

/// Groups all changes of a slider or knob between press and release into one history step. It lies on top, so that
/// the step begins before the control sees the press, and passes all events through.
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
