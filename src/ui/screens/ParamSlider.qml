import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// A slider whose whole movement is one step of the history.
DotSlider {
    id: slider

    onPressedChanged: {
        if (pressed)
            App.history.beginGesture();
        else
            App.history.endGesture();
    }
    Component.onDestruction: {
        if (pressed)
            App.history.endGesture();
    }
}
