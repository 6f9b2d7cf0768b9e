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
        chips: [qsTr("%1 on").arg(App.settings.levelStagesOn)]
    }
    BodyText {
        Layout.fillWidth: true
        Layout.maximumWidth: Theme.readingWidth
        wrapMode: Text.WordWrap
        text: qsTr("The limiter sees peaks 1.3 ms before they arrive and rides the gain down, so a boosted band can't clip. Auto-gain chases a target level on its own. Manual loudness is a fixed trim that stays exactly where you put it — nothing follows the music. With both on, the trim offsets whatever level auto-gain settles on.")
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Master Limiter")
        on: App.setting("limiterEnabled").on
        onSwitched: App.setting("limiterEnabled").toggle()
        trailing: Readout {
            Layout.preferredWidth: Math.max(Theme.valueWidth, implicitWidth)
            caption: qsTr("Gain reduction")
            value: App.engine.reductionText
        }

        ParamRow {
            Layout.fillWidth: true
            setting: App.setting("limiterThresholdDB")
        }
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Auto-Gain")
        on: App.setting("autoGainEnabled").on
        onSwitched: App.setting("autoGainEnabled").toggle()
        trailing: Readout {
            Layout.preferredWidth: Math.max(Theme.valueWidth, implicitWidth)
            caption: qsTr("Applied gain")
            value: App.engine.autoGainText
        }

        ParamRow {
            Layout.fillWidth: true
            setting: App.setting("autoGainTargetDB")
        }
    }
    StageCard {
        Layout.fillWidth: true
        name: qsTr("Manual Loudness")
        on: App.setting("manualLoudnessEnabled").on
        onSwitched: App.setting("manualLoudnessEnabled").toggle()

        ParamRow {
            Layout.fillWidth: true
            setting: App.setting("manualLoudnessDB")
        }
    }
    WrapRow {
        Layout.fillWidth: true
        spacing: 2 * Theme.unit

        CaptionText {
            text: qsTr("Peak protection")
            font.pixelSize: Theme.bodySize
        }
        BodyText {
            WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
            text: App.settings.peakProtection
            wrapMode: Text.Wrap
            lineHeight: 1
            color: App.setting("limiterEnabled").on ? Theme.ink : Theme.warning
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
