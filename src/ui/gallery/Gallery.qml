import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

Window {
    id: window

    visible: true
    width: 1280
    height: 900
    title: "Gallery"
    color: Theme.paper

    DotSlider {
        x: 40
        y: 40
        accessibleName: "Slider"
        value: 0.4
    }
}
