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

    /// A row of a stage's card: it ends where the meter and the value in the head do.
    component StageParam: ParamRow {
        Layout.fillWidth: true
        trailing: 17 * Theme.unit
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
        RowLayout {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit

            BodyText {
                Layout.leftMargin: 7 * Theme.unit
                Layout.preferredWidth: 22 * Theme.unit
                text: qsTr("Preset")
                Accessible.ignored: true
            }
            DotComboBox {
                Layout.preferredWidth: 26 * Theme.unit
                model: App.settings.reverbPresetTitles
                currentIndex: App.setting("reverbPreset").value
                accessibleName: App.setting("reverbPreset").name
                Accessible.description: displayText
                onActivated: index => App.setting("reverbPreset").value = index
            }
        }
    }
    EffectCard {
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
        RowLayout {
            Layout.fillWidth: true

            SwitchRow {
                Layout.leftMargin: 7 * Theme.unit
                label: App.setting("voiceAdaptiveEnabled").label
                checked: App.setting("voiceAdaptiveEnabled").on
                onToggled: App.setting("voiceAdaptiveEnabled").toggle()
            }
            Item {
                Layout.fillWidth: true
            }
            Readout {
                Layout.preferredWidth: 13 * Theme.unit
                Layout.rightMargin: 17 * Theme.unit
                caption: qsTr("Mid-range content")
                value: App.engine.confidenceText
            }
        }
    }
    EffectCard {
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
        RowLayout {
            Layout.fillWidth: true

            SwitchRow {
                Layout.leftMargin: 7 * Theme.unit
                label: App.setting("bassAdaptiveEnabled").label
                checked: App.setting("bassAdaptiveEnabled").on
                onToggled: App.setting("bassAdaptiveEnabled").toggle()
            }
            Item {
                Layout.fillWidth: true
            }
            Readout {
                Layout.preferredWidth: 13 * Theme.unit
                Layout.rightMargin: 17 * Theme.unit
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

            RowLayout {
                Layout.fillWidth: true

                StageName {
                    Layout.fillWidth: true
                    name: qsTr("Tone Controls")
                    description: qsTr("Shelf 100 Hz · peak 1 kHz · shelf 5 kHz · ±12 dB each")
                }
                DotButton {
                    text: qsTr("Reset")
                    help: qsTr("Sets the three knobs of Tone Controls to 0 dB")
                    onClicked: App.settings.resetTone()
                }
            }
            RowLayout {
                Layout.fillWidth: true

                ToneKnob {
                    Layout.fillWidth: true
                    setting: App.setting("toneBassDB")
                }
                ToneKnob {
                    Layout.fillWidth: true
                    setting: App.setting("toneMidDB")
                }
                ToneKnob {
                    Layout.fillWidth: true
                    setting: App.setting("toneTrebleDB")
                }
            }
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
