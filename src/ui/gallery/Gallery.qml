pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

// Shows every primitive in every state on one page. Items with live data run on simulated data here.
Window {
    id: window

    required property list<string> symbolNames
    property bool moving: false
    property bool dialogOpen: false
    property bool menuOpen: false
    property real phase: 0

    function spectrum() {
        const levels = [];
        for (let band = 0; band < 32; ++band)
            levels.push(Math.max(0, Math.exp(-band / 22) * (0.75 + 0.25 * Math.sin(band * 1.7 + phase)) - 0.08));
        return levels;
    }

    function bell(centre, width, height) {
        const values = [];
        for (let index = 0; index < 90; ++index)
            values.push(0.5 + height * Math.exp(-Math.pow((index - centre) / width, 2)) - 0.25 * Math.exp(-Math.pow((index - 20) / 9, 2)));
        return values;
    }

    visible: true
    width: 1280
    height: 1056
    title: "Gallery"
    color: Theme.paper
    Component.onCompleted: {
        focused.forceActiveFocus(Qt.TabFocusReason);
        if (dialogOpen)
            dialog.open();
        if (menuOpen)
            choices.popup.open();
    }

    Timer {
        interval: 33
        repeat: true
        running: window.moving && window.visible
        onTriggered: window.phase += 0.21
    }

    component Line: RowLayout {
        spacing: 3 * Theme.unit
    }
    component Caption: Text {
        color: Theme.inkSoft
        font.pixelSize: Theme.captionSize
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 4 * Theme.unit
        spacing: 2 * Theme.unit

        Line {
            Text {
                text: "Equalizer"
                color: Theme.ink
                font.pixelSize: Theme.titleSize
                font.bold: true
            }
            DotChip {
                text: "10 bands"
            }
            DotChip {
                text: "Playing"
                lit: true
            }
            DotText {
                text: "LIVE"
                dotSize: 4
                color: Theme.signal
            }
            DotText {
                text: "-3.5 dB"
                dotSize: 4
                showUnlit: true
            }
            DotText {
                text: "STOPPED"
                dotSize: 3
            }
            DotText {
                text: "+12.0 dB 48 kHz 32 ms 100%"
            }
            Item {
                Layout.fillWidth: true
            }
            DotButton {
                symbol: "play.fill"
                text: "Start"
                primary: true
            }
        }
        ColumnLayout {
            spacing: Theme.unit

            DotText {
                text: "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789"
                dotSize: 3
            }
            DotText {
                text: "dBHzkms +-.,:%·/()!?=_'&∞°"
                dotSize: 3
                color: Theme.inkSoft
            }
        }

        RowLayout {
            spacing: 2 * Theme.unit

            DotCard {
                title: "Response"
                Layout.fillWidth: true
                Layout.preferredHeight: 35 * Theme.unit

                DotCurve {
                    anchors.fill: parent
                    values: window.bell(62, 8, 0.35)
                    secondaryValues: window.bell(62, 7, 0.4)
                    spectrum: window.spectrum()
                    spectrumEdges: Array.from({ length: 33 }, (_, band) => 27 * Math.pow(660, band / 32))
                }
            }
            DotCard {
                title: "Live spectrum"
                Layout.preferredHeight: 35 * Theme.unit

                ColumnLayout {
                    anchors.fill: parent
                    spacing: 2 * Theme.unit

                    DotBars {
                        levels: window.spectrum()
                    }
                    DotBars {
                        levels: window.spectrum()
                        active: false
                        rows: 4
                    }
                    Item {
                        Layout.fillHeight: true
                    }
                }
            }
        }

        RowLayout {
            spacing: 2 * Theme.unit

            DotCard {
                title: "Sliders"
                Layout.fillWidth: true
                Layout.preferredHeight: 31 * Theme.unit

                RowLayout {
                    anchors.fill: parent
                    spacing: 3 * Theme.unit

                    Repeater {
                        model: [-9, -3, 0, 4.5, 12]

                        DotSlider {
                            id: fader

                            required property real modelData

                            Layout.fillHeight: true
                            orientation: Qt.Vertical
                            accessibleName: "Fader"
                            from: -12
                            to: 12
                            origin: 0
                            stepSize: 0.1
                            value: fader.modelData
                        }
                    }
                    ColumnLayout {
                        spacing: Theme.unit

                        DotSlider {
                            accessibleName: "Amount"
                            value: 0.4
                        }
                        DotSlider {
                            id: focused

                            accessibleName: "Focused"
                            from: -1
                            origin: 0
                            value: 0.5
                        }
                        DotSlider {
                            accessibleName: "Disabled"
                            value: 0.7
                            enabled: false
                        }
                        DotSlider {
                            accessibleName: "At its end"
                            value: 1
                        }
                    }
                }
            }
            DotCard {
                title: "Knobs"
                Layout.preferredHeight: 31 * Theme.unit

                GridLayout {
                    anchors.fill: parent
                    columns: 3
                    columnSpacing: 3 * Theme.unit
                    rowSpacing: 2 * Theme.unit

                    Repeater {
                        model: [-12, -4, 0, 5, 12]

                        DotKnob {
                            id: knob

                            required property real modelData

                            accessibleName: "Knob"
                            from: -12
                            to: 12
                            origin: 0
                            stepSize: 0.5
                            value: knob.modelData
                        }
                    }
                    DotKnob {
                        accessibleName: "Disabled"
                        value: 0.5
                        enabled: false
                    }
                }
            }
        }

        RowLayout {
            spacing: 2 * Theme.unit

            DotCard {
                title: "Switches"
                Layout.preferredHeight: 26 * Theme.unit
                Layout.fillWidth: true

                ColumnLayout {
                    anchors.fill: parent
                    spacing: 2 * Theme.unit

                    Line {
                        DotToggle {
                            checked: true
                            accessibleName: "On"
                        }
                        DotToggle {
                            accessibleName: "Off"
                        }
                        DotToggle {
                            checked: true
                            enabled: false
                            accessibleName: "On, disabled"
                        }
                        DotToggle {
                            enabled: false
                            accessibleName: "Off, disabled"
                        }
                    }
                    DotToggle {
                        text: "Spectrum analyzer (visual only)"
                        checked: true
                    }
                    DotScrollView {
                        Layout.fillWidth: true
                        Layout.preferredHeight: 6 * Theme.unit
                        contentWidth: availableWidth

                        Text {
                            width: parent.width
                            wrapMode: Text.Wrap
                            color: Theme.inkSoft
                            font.pixelSize: Theme.bodySize
                            text: "The limiter sees peaks before they arrive and rides the gain down, so a boosted band can't clip. Auto-gain chases a target level on its own. Manual loudness is a fixed trim that stays exactly where you put it; nothing follows the music."
                        }
                    }
                    Item {
                        Layout.fillHeight: true
                    }
                }
            }
            DotCard {
                title: "Fields"
                Layout.preferredHeight: 26 * Theme.unit

                ColumnLayout {
                    anchors.fill: parent
                    spacing: 2 * Theme.unit

                    DotComboBox {
                        id: choices

                        Layout.preferredWidth: 32 * Theme.unit
                        title: "Output"
                        model: ["Edifier MR5", "Headphones", "A loudspeaker with a very long name indeed"]
                    }
                    DotTextField {
                        Layout.preferredWidth: 32 * Theme.unit
                        placeholder: "Name"
                    }
                    Item {
                        Layout.fillHeight: true
                    }
                }
            }
            DotCard {
                title: "Buttons"
                Layout.fillWidth: true
                Layout.preferredHeight: 26 * Theme.unit

                ColumnLayout {
                    anchors.fill: parent
                    spacing: Theme.unit

                    Line {
                        spacing: Theme.unit

                        DotButton {
                            text: "Stop"
                            symbol: "stop.fill"
                            primary: true
                        }
                        DotButton {
                            text: "Reset"
                        }
                    }
                    Line {
                        spacing: Theme.unit

                        DotButton {
                            text: "Save"
                            enabled: false
                            primary: true
                        }
                        DotButton {
                            text: "All controls"
                            symbol: "chevron.down"
                            flat: true
                        }
                    }
                    Line {
                        spacing: Theme.unit

                        DotIconButton {
                            symbol: "undo"
                            accessibleName: "Undo"
                        }
                        DotIconButton {
                            symbol: "redo"
                            accessibleName: "Redo"
                            enabled: false
                        }
                        DotIconButton {
                            symbol: "trash"
                            accessibleName: "Delete preset"
                        }
                        DotButton {
                            symbol: "arrow.clockwise"
                            accessibleName: "Refresh"
                        }
                    }
                    DotButton {
                        text: "Dialog"
                        onClicked: dialog.open()
                    }
                    Item {
                        Layout.fillHeight: true
                    }
                }
            }
        }

        Flow {
            Layout.fillWidth: true
            Layout.preferredHeight: 12 * Theme.unit
            spacing: Theme.unit

            Repeater {
                model: window.symbolNames

                Column {
                    id: cell

                    required property string modelData

                    width: 9 * Theme.unit
                    spacing: Theme.radius

                    Row {
                        anchors.horizontalCenter: parent.horizontalCenter
                        spacing: Theme.unit

                        Symbol {
                            name: cell.modelData
                        }
                        Symbol {
                            name: cell.modelData
                            size: 24
                            color: Theme.inkSoft
                        }
                    }
                    Caption {
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        text: cell.modelData
                        elide: Text.ElideMiddle
                        font.pixelSize: 8
                    }
                }
            }
        }
        Item {
            Layout.fillHeight: true
        }
    }

    DotDialog {
        id: dialog

        title: "Save Preset"
        acceptText: "Save"

        contentItem: ColumnLayout {
            spacing: Theme.unit

            Caption {
                text: "Name"
            }
            DotTextField {
                Layout.fillWidth: true
                accessibleName: "Name"
                text: "My Preset"
                focus: true
            }
        }
    }
}
