import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The stages of width, room, voice and bass, and the tone controls.
ScreenPage {
    id: screen

    /// The stages of this screen, in the order of their cards.
    enum Etaj { Xtc, Widener, Reverb, Voice, Bass }

    /// The stages whose cards are open.
    property var expanded: []
    signal expansionRequested(int stage)

    /// A switch among a stage's controls.
    component SwitchRow: DotToggle {
        required property string label

        Layout.topMargin: Theme.unit
        text: label
        accessibleName: label
    }

    /// A parameter of a stage; its value is aligned with the one in the card's head.
    component StageParam: ParamRow {
        Layout.fillWidth: true
        trailing: Theme.expanderWidth + 2 * Theme.unit
    }

    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Spatial")
        chips: [qsTr("%1 on").arg(App.settings.spatialStagesOn)]
    }
    EffectCard {
        Layout.fillWidth: true
        name: qsTr("XTC Shuffler")
        description: qsTr("Room Filling")
        readout: Format.fixed(App.setting("xtcAmount").value, 0)
        on: App.setting("xtcEnabled").on
        expanded: screen.expanded.includes(SpatialView.Etaj.Xtc)
        onSwitched: App.setting("xtcEnabled").toggle()
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Xtc)

        StageParam {
            setting: App.setting("xtcAmount")
        }
        StageParam {
            setting: App.setting("xtcNotchFrequency")
        }
    }
    EffectCard {
        Layout.fillWidth: true
        name: qsTr("Stereo Widening")
        description: qsTr("Mid / Side")
        readout: Format.fixed(App.setting("widthPercent").value, 0)
        on: App.setting("widenerEnabled").on
        expanded: screen.expanded.includes(SpatialView.Etaj.Widener)
        onSwitched: App.setting("widenerEnabled").toggle()
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Widener)

        StageParam {
            setting: App.setting("widthPercent")
        }
    }
    EffectCard {
        id: reverbCard
        Layout.fillWidth: true
        name: qsTr("Reverb")
        description: qsTr("Room Ambience")
        readout: Format.fixed(App.setting("reverbMix").value, 0)
        readoutUnit: qsTr("% wet")
        on: App.setting("reverbEnabled").on
        expanded: screen.expanded.includes(SpatialView.Etaj.Reverb)
        onSwitched: App.setting("reverbEnabled").toggle()
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Reverb)

        StageParam {
            setting: App.setting("reverbMix")
        }
        WrapRow {
            Layout.fillWidth: true
            Layout.leftMargin: reverbCard.narrow ? 0 : Theme.indent
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            BodyText {
                WrapRow.minimumWidth: Theme.labelWidth
                text: qsTr("Preset")
                Accessible.ignored: true
            }
            DotComboBox {
                WrapRow.minimumWidth: 26 * Theme.textUnit
                model: App.settings.reverbPresetTitles
                currentIndex: App.setting("reverbPreset").value
                accessibleName: App.setting("reverbPreset").name
                Accessible.description: displayText
                onActivated: index => App.setting("reverbPreset").value = index
            }
        }
    }
    EffectCard {
        id: voiceCard
        Layout.fillWidth: true
        name: qsTr("Voice Clarity")
        description: qsTr("Presence and mud cut")
        readout: Format.fixed(App.setting("voiceAmount").value, 0)
        on: App.setting("voiceEnabled").on
        expanded: screen.expanded.includes(SpatialView.Etaj.Voice)
        onSwitched: App.setting("voiceEnabled").toggle()
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Voice)

        StageParam {
            setting: App.setting("voiceAmount")
        }
        StageParam {
            setting: App.setting("voicePresenceGainDB")
        }
        StageParam {
            setting: App.setting("voiceMudCutDB")
        }
        WrapRow {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            Layout.leftMargin: voiceCard.narrow ? 0 : Theme.indent
            Layout.rightMargin: voiceCard.narrow ? 0 : Theme.expanderWidth + 2 * Theme.unit
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            SwitchRow {
                WrapRow.minimumWidth: Math.min(implicitWidth, 30 * Theme.textUnit)
                WrapRow.fills: true
                label: App.setting("voiceAdaptiveEnabled").label
                checked: App.setting("voiceAdaptiveEnabled").on
                onToggled: App.setting("voiceAdaptiveEnabled").toggle()
            }
            Readout {
                WrapRow.minimumWidth: Math.max(Theme.valueWidth, implicitWidth)
                WrapRow.trailing: true
                caption: qsTr("Mid-range content")
                value: App.engine.confidenceText
            }
        }
    }
    EffectCard {
        id: bassCard
        Layout.fillWidth: true
        name: qsTr("Deep Bass")
        description: qsTr("Harmonic enhancement")
        readout: Format.fixed(App.setting("bassAmount").value, 0)
        on: App.setting("bassEnabled").on
        expanded: screen.expanded.includes(SpatialView.Etaj.Bass)
        onSwitched: App.setting("bassEnabled").toggle()
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Bass)

        StageParam {
            setting: App.setting("bassAmount")
        }
        StageParam {
            setting: App.setting("bassDrive")
        }
        StageParam {
            setting: App.setting("bassCrossover")
        }
        WrapRow {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            Layout.leftMargin: bassCard.narrow ? 0 : Theme.indent
            Layout.rightMargin: bassCard.narrow ? 0 : Theme.expanderWidth + 2 * Theme.unit
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            SwitchRow {
                WrapRow.minimumWidth: Math.min(implicitWidth, 30 * Theme.textUnit)
                WrapRow.fills: true
                label: App.setting("bassAdaptiveEnabled").label
                checked: App.setting("bassAdaptiveEnabled").on
                onToggled: App.setting("bassAdaptiveEnabled").toggle()
            }
            Readout {
                WrapRow.minimumWidth: Math.max(Theme.valueWidth, implicitWidth)
                WrapRow.trailing: true
                caption: qsTr("Tracking")
                value: App.engine.trackingText
            }
        }
    }
    DotCard {
        Layout.fillWidth: true

        ColumnLayout {
            id: toneRows
            anchors.fill: parent
            spacing: 2 * Theme.unit

            WrapRow {
                Layout.fillWidth: true
                spacing: 2 * Theme.unit
                rowSpacing: Theme.unit

                StageName {
                    WrapRow.fills: true
                    WrapRow.minimumWidth: Theme.labelWidth
                    name: qsTr("Tone Controls")
                    description: qsTr("Shelf 100 Hz · peak 1 kHz · shelf 5 kHz · ±12 dB each")
                }
                DotButton {
                    text: qsTr("Reset")
                    help: qsTr("Sets the three knobs of Tone Controls to 0 dB")
                    onClicked: App.settings.resetTone()
                }
            }
            WrapRow {
                Layout.fillWidth: true
                spacing: 2 * Theme.unit
                rowSpacing: 2 * Theme.unit

                ToneKnob {
                    WrapRow.fills: true
                    WrapRow.minimumWidth: 11 * Theme.unit + 11 * Theme.textUnit
                    setting: App.setting("toneBassDB")
                }
                ToneKnob {
                    WrapRow.fills: true
                    WrapRow.minimumWidth: 11 * Theme.unit + 11 * Theme.textUnit
                    setting: App.setting("toneMidDB")
                }
                ToneKnob {
                    WrapRow.fills: true
                    WrapRow.minimumWidth: 11 * Theme.unit + 11 * Theme.textUnit
                    setting: App.setting("toneTrebleDB")
                }
            }
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
