import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The level stages: limiter, auto gain and the fixed trim.
ScreenPage {
    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Limiter & gain")
        subtitle: qsTr("Level stages")
        chips: [qsTr("%1 on").arg(App.mixer.levelStagesOn)]
    }
    BodyText {
        Layout.fillWidth: true
        Layout.maximumWidth: 88 * Theme.unit
        wrapMode: Text.WordWrap
        text: qsTr("The limiter sees peaks 1.3 ms before they arrive and rides the gain down, so a boosted band can't clip. Auto-gain chases a target level on its own. Manual loudness is a fixed trim that stays exactly where you put it — nothing follows the music. With both on, the trim offsets whatever level auto-gain settles on.")
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Master Limiter")
        on: App.mixer.limiterEnabled
        onSwitched: App.mixer.limiterEnabled = !App.mixer.limiterEnabled
        trailing: Readout {
            Layout.preferredWidth: 13 * Theme.unit
            caption: qsTr("Gain reduction")
            value: App.engine.reductionText
        }

        ParamRow {
            Layout.fillWidth: true
            label: qsTr("Threshold")
            from: -12
            to: 0
            stepSize: 0.1
            value: App.mixer.limiterThresholdDB
            valueText: qsTr("%1 dBFS").arg(Format.fixed(value, 1))
            defaultValue: -0.3
            onMoved: value => App.mixer.limiterThresholdDB = value
        }
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Auto-Gain")
        on: App.mixer.autoGainEnabled
        onSwitched: App.mixer.autoGainEnabled = !App.mixer.autoGainEnabled
        trailing: Readout {
            Layout.preferredWidth: 13 * Theme.unit
            caption: qsTr("Applied gain")
            value: App.engine.autoGainText
        }

        ParamRow {
            Layout.fillWidth: true
            label: qsTr("Target")
            from: -30
            to: -6
            stepSize: 0.1
            value: App.mixer.autoGainTargetDB
            valueText: qsTr("%1 dB").arg(Format.fixed(value, 1))
            defaultValue: -16
            onMoved: value => App.mixer.autoGainTargetDB = value
        }
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Manual Loudness")
        on: App.mixer.manualLoudnessEnabled
        onSwitched: App.mixer.manualLoudnessEnabled = !App.mixer.manualLoudnessEnabled

        ParamRow {
            Layout.fillWidth: true
            label: qsTr("Trim")
            from: -12
            to: 12
            origin: 0
            stepSize: 0.1
            value: App.mixer.manualLoudnessDB
            valueText: Format.signedDecibels(value)
            defaultValue: 0
            onMoved: value => App.mixer.manualLoudnessDB = value
        }
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 2 * Theme.unit

        CaptionText {
            text: qsTr("Peak protection")
            font.pixelSize: Theme.bodySize
        }
        BodyText {
            Layout.fillWidth: true
            text: App.mixer.peakProtection
            color: App.mixer.limiterEnabled ? Theme.ink : Theme.warning
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
