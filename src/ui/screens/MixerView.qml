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
        chips: [qsTr("%1 on").arg(App.settings.colourStagesOn)]
    }
    BodyText {
        Layout.fillWidth: true
        Layout.maximumWidth: Theme.readingWidth
        wrapMode: Text.WordWrap
        text: qsTr("Saturation adds harmonics by soft-clipping; crossfeed bleeds a delayed copy of each channel into the other ear, the way speakers do. Both are off by default.")
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Saturation")
        description: qsTr("Analog warmth · tanh")
        on: App.setting("saturationEnabled").on
        onSwitched: App.setting("saturationEnabled").toggle()

        ParamRow {
            Layout.fillWidth: true
            setting: App.setting("saturationDrive")
        }
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Crossfeed")
        description: qsTr("Speaker-like bleed between the ears")
        on: App.setting("crossfeedEnabled").on
        onSwitched: App.setting("crossfeedEnabled").toggle()

        ParamRow {
            Layout.fillWidth: true
            setting: App.setting("crossfeedAmount")
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
