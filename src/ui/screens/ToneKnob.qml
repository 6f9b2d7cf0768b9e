import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// One tone control as a knob with its gain.
RowLayout {
    id: tone

    required property Setting setting

    spacing: 2 * Theme.unit

    ParamKnob {
        id: knob
        from: tone.setting.from
        to: tone.setting.to
        stepSize: tone.setting.stepSize
        origin: tone.setting.origin
        value: tone.setting.value
        accessibleName: tone.setting.name
        valueText: tone.setting.text
        onMoved: tone.setting.value = value
        onResetRequested: tone.setting.value = tone.setting.defaultValue
    }
    Readout {
        caption: tone.setting.label
        value: tone.setting.text
    }
    Item {
        Layout.fillWidth: true
    }
}
