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
        chips: [qsTr("%1 on").arg(App.spatial.enabledCount)]
    }
    EffectCard {
        Layout.fillWidth: true
        name: qsTr("XTC Shuffler")
        description: qsTr("Room Filling")
        readout: Format.fixed(App.spatial.xtcAmount, 0)
        level: App.spatial.xtcAmount / 100
        on: App.spatial.xtcEnabled
        expanded: screen.expanded.includes(SpatialView.Etaj.Xtc)
        onSwitched: App.spatial.xtcEnabled = !App.spatial.xtcEnabled
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Xtc)

        StageParam {
            label: qsTr("XTC Amount")
            from: 0
            to: 100
            value: App.spatial.xtcAmount
            valueText: Format.fixed(value, 0)
            defaultValue: 50
            onMoved: value => App.spatial.xtcAmount = value
        }
        StageParam {
            label: qsTr("Head-width Notch")
            from: 500
            to: 8000
            stepSize: 10
            value: App.spatial.xtcNotchFrequency
            valueText: qsTr("%1 Hz").arg(Format.fixed(value, 0))
            defaultValue: 2000
            onMoved: value => App.spatial.xtcNotchFrequency = value
        }
    }
    EffectCard {
        Layout.fillWidth: true
        name: qsTr("Stereo Widening")
        description: qsTr("Mid / Side")
        readout: Format.fixed(App.spatial.widthPercent, 0)
        level: App.spatial.widthPercent / 200
        on: App.spatial.widenerEnabled
        expanded: screen.expanded.includes(SpatialView.Etaj.Widener)
        onSwitched: App.spatial.widenerEnabled = !App.spatial.widenerEnabled
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Widener)

        StageParam {
            label: qsTr("Width")
            from: 0
            to: 200
            origin: 100
            value: App.spatial.widthPercent
            valueText: qsTr("%1 %").arg(Format.fixed(value, 0))
            defaultValue: 100
            onMoved: value => App.spatial.widthPercent = value
        }
    }
    EffectCard {
        Layout.fillWidth: true
        name: qsTr("Reverb")
        description: qsTr("Room Ambience")
        readout: Format.fixed(App.spatial.reverbMix, 0)
        readoutUnit: qsTr("% wet")
        level: App.spatial.reverbMix / 60
        on: App.spatial.reverbEnabled
        expanded: screen.expanded.includes(SpatialView.Etaj.Reverb)
        onSwitched: App.spatial.reverbEnabled = !App.spatial.reverbEnabled
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Reverb)

        StageParam {
            label: qsTr("Wet Mix")
            from: 0
            to: 60
            value: App.spatial.reverbMix
            valueText: qsTr("%1 %").arg(Format.fixed(value, 0))
            defaultValue: 15
            onMoved: value => App.spatial.reverbMix = value
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
                model: App.spatial.reverbPresetTitles
                currentIndex: App.spatial.reverbPresetIndex
                accessibleName: qsTr("Reverb, %1").arg(qsTr("Preset"))
                Accessible.description: displayText
                onActivated: index => App.spatial.reverbPresetIndex = index
            }
        }
    }
    EffectCard {
        Layout.fillWidth: true
        name: qsTr("Voice Clarity")
        description: qsTr("Presence and mud cut")
        readout: Format.fixed(App.spatial.voiceAmount, 0)
        level: App.spatial.voiceAmount / 100
        on: App.spatial.voiceEnabled
        expanded: screen.expanded.includes(SpatialView.Etaj.Voice)
        onSwitched: App.spatial.voiceEnabled = !App.spatial.voiceEnabled
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Voice)

        StageParam {
            label: qsTr("Amount")
            accessibleContext: qsTr("Voice Clarity")
            from: 0
            to: 100
            value: App.spatial.voiceAmount
            valueText: Format.fixed(value, 0)
            defaultValue: 100
            onMoved: value => App.spatial.voiceAmount = value
        }
        StageParam {
            label: qsTr("Presence @ 3 kHz")
            from: 0
            to: 6
            stepSize: 0.1
            value: App.spatial.voicePresenceGainDB
            valueText: Format.signedDecibels(value)
            defaultValue: 3
            onMoved: value => App.spatial.voicePresenceGainDB = value
        }
        StageParam {
            label: qsTr("Mud cut @ 300 Hz")
            from: 0
            to: 4
            stepSize: 0.1
            value: App.spatial.voiceMudCutDB
            valueText: qsTr("%1 dB").arg(Format.fixed(value, 1))
            defaultValue: 2.5
            onMoved: value => App.spatial.voiceMudCutDB = value
        }
        RowLayout {
            Layout.fillWidth: true

            SwitchRow {
                Layout.leftMargin: 7 * Theme.unit
                label: qsTr("Adaptive scaling (experimental)")
                checked: App.spatial.voiceAdaptiveEnabled
                onToggled: App.spatial.voiceAdaptiveEnabled = !App.spatial.voiceAdaptiveEnabled
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
        readout: Format.fixed(App.spatial.bassAmount, 0)
        level: App.spatial.bassAmount / 100
        on: App.spatial.bassEnabled
        expanded: screen.expanded.includes(SpatialView.Etaj.Bass)
        onSwitched: App.spatial.bassEnabled = !App.spatial.bassEnabled
        onExpandRequested: screen.expansionRequested(SpatialView.Etaj.Bass)

        StageParam {
            label: qsTr("Amount")
            accessibleContext: qsTr("Deep Bass")
            from: 0
            to: 100
            value: App.spatial.bassAmount
            valueText: Format.fixed(value, 0)
            defaultValue: 50
            onMoved: value => App.spatial.bassAmount = value
        }
        StageParam {
            label: qsTr("Drive")
            accessibleContext: qsTr("Deep Bass")
            from: 1
            to: 8
            stepSize: 0.1
            value: App.spatial.bassDrive
            valueText: Format.fixed(value, 1)
            defaultValue: 3
            onMoved: value => App.spatial.bassDrive = value
        }
        StageParam {
            label: qsTr("Crossover")
            from: 40
            to: 150
            value: App.spatial.bassCrossover
            valueText: qsTr("%1 Hz").arg(Format.fixed(value, 0))
            defaultValue: 80
            onMoved: value => App.spatial.bassCrossover = value
        }
        RowLayout {
            Layout.fillWidth: true

            SwitchRow {
                Layout.leftMargin: 7 * Theme.unit
                label: qsTr("Adaptive — track song’s bass fundamental")
                checked: App.spatial.bassAdaptiveEnabled
                onToggled: App.spatial.bassAdaptiveEnabled = !App.spatial.bassAdaptiveEnabled
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

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: Theme.unit / 4

                    HeadingText {
                        Layout.fillWidth: true
                        text: qsTr("Tone Controls")
                    }
                    CaptionText {
                        Layout.fillWidth: true
                        text: qsTr("Shelf 100 Hz · peak 1 kHz · shelf 5 kHz · ±12 dB each")
                    }
                }
                DotButton {
                    text: qsTr("Reset")
                    Accessible.description: qsTr("Tone Controls")
                    onClicked: App.spatial.resetTone()
                }
            }
            RowLayout {
                Layout.fillWidth: true

                ToneKnob {
                    Layout.fillWidth: true
                    label: qsTr("Bass")
                    value: App.spatial.toneBassDB
                    onMoved: value => App.spatial.toneBassDB = value
                }
                ToneKnob {
                    Layout.fillWidth: true
                    label: qsTr("Mid")
                    value: App.spatial.toneMidDB
                    onMoved: value => App.spatial.toneMidDB = value
                }
                ToneKnob {
                    Layout.fillWidth: true
                    label: qsTr("Treble")
                    value: App.spatial.toneTrebleDB
                    onMoved: value => App.spatial.toneTrebleDB = value
                }
            }
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
