import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// One tone control as a knob with its gain.
RowLayout {
    id: tone

    required property string label
    required property real value
    signal moved(real value)

    readonly property string valueText: Format.signedDecibels(value)

    spacing: 2 * Theme.unit

    ParamKnob {
        id: knob
        from: -12
        to: 12
        stepSize: 0.1
        origin: 0
        value: tone.value
        accessibleName: tone.label
        valueText: tone.valueText
        onMoved: tone.moved(value)
        onResetRequested: tone.moved(0)
    }
    Readout {
        caption: tone.label
        value: tone.valueText
    }
    Item {
        Layout.fillWidth: true
    }
}
