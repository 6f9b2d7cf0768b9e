import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A caption over a measured value in dots.
ColumnLayout {
    id: readout

    required property string caption
    required property string value
    property real dotSize: 2
    property color dotColor: Theme.ink

    spacing: Theme.unit
    Accessible.role: Accessible.StaticText
    Accessible.name: caption + " " + value

    CaptionText {
        text: readout.caption
        Accessible.ignored: true
    }
    DotText {
        text: readout.value
        dotSize: readout.dotSize
        color: readout.dotColor
        Accessible.ignored: true
    }
}
