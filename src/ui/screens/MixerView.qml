import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The colour stages: saturation and crossfeed.
ScreenPage {
    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Mixer")
        subtitle: qsTr("Colour stages")
        chips: [qsTr("%1 on").arg(App.mixer.colourStagesOn)]
    }
    BodyText {
        Layout.fillWidth: true
        Layout.maximumWidth: 88 * Theme.unit
        wrapMode: Text.WordWrap
        text: qsTr("Saturation adds harmonics by soft-clipping; crossfeed bleeds a delayed copy of each channel into the other ear, the way speakers do. Both are off by default.")
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Saturation")
        description: qsTr("Analog warmth · tanh")
        on: App.mixer.saturationEnabled
        onSwitched: App.mixer.saturationEnabled = !App.mixer.saturationEnabled

        ParamRow {
            Layout.fillWidth: true
            label: qsTr("Drive")
            accessibleContext: qsTr("Saturation")
            from: 0
            to: 100
            value: App.mixer.saturationDrive
            valueText: Format.fixed(value, 0)
            defaultValue: 30
            onMoved: value => App.mixer.saturationDrive = value
        }
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Crossfeed")
        description: qsTr("Speaker-like bleed between the ears")
        on: App.mixer.crossfeedEnabled
        onSwitched: App.mixer.crossfeedEnabled = !App.mixer.crossfeedEnabled

        ParamRow {
            Layout.fillWidth: true
            label: qsTr("Amount")
            accessibleContext: qsTr("Crossfeed")
            from: 0
            to: 100
            value: App.mixer.crossfeedAmount
            valueText: Format.fixed(value, 0)
            defaultValue: 50
            onMoved: value => App.mixer.crossfeedAmount = value
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
