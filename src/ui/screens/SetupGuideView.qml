import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The guide of the first run, and the user's progress.
ScreenPage {
    /// One numbered step of the guide. Double asterisks in its paragraphs mark bold words.
    component SetupStep: Item {
        id: step

        required property int number
        required property string title
        required property var paragraphs
        property var points: []

        /// Left edge of the texts, beside the number.
        readonly property real indent: Theme.indent

        implicitHeight: Math.max(figure.height, texts.height)

        DotText {
            id: figure
            text: step.number
            dotSize: 4
            color: Theme.signal
            Accessible.ignored: true
        }
        Column {
            id: texts
            x: step.indent
            width: Math.min(step.width - x, Theme.readingWidth)
            spacing: Theme.unit

            HeadingText {
                width: parent.width
                text: step.title
                Accessible.role: Accessible.Heading
                Accessible.name: step.number + ". " + step.title
            }
            Repeater {
                model: step.paragraphs
                delegate: BodyText {
                    required property string modelData
                    width: texts.width // qmllint disable unqualified
                    text: modelData.replace(/&/g, "&amp;").replace(/\*\*(.+?)\*\*/g, "<b>$1</b>")
                    textFormat: Text.StyledText
                    wrapMode: Text.WordWrap
                    Accessible.name: modelData.replace(/\*\*/g, "")
                }
            }
            Repeater {
                model: step.points
                delegate: Item {
                    id: bullet
                    required property string modelData
                    // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                    // qmllint disable unqualified
                    width: texts.width
                    height: point.height
                    // qmllint enable unqualified

                    Rectangle {
                        y: Theme.textUnit * 0.75
                        width: Theme.unit / 2
                        height: width
                        radius: width / 2
                        color: Theme.ink
                    }
                    BodyText {
                        id: point
                        x: 2 * Theme.unit
                        width: parent.width - x
                        text: bullet.modelData
                        wrapMode: Text.WordWrap
                    }
                }
            }
        }
    }

    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Setup")
        chips: [qsTr("4 steps")]
    }
    DotCard {
        Layout.fillWidth: true

        ColumnLayout {
            id: steps
            anchors.fill: parent
            spacing: 4 * Theme.unit

            SetupStep {
                Layout.fillWidth: true
                number: 1
                title: qsTr("Pick your output device")
                paragraphs: [
                    qsTr("Use the Output picker in the toolbar above. Any output device works — wired speakers, AirPods, Bluetooth speakers.")
                ]
            }
            SetupStep {
                Layout.fillWidth: true
                number: 2
                title: qsTr("Click Start and approve the one-time permission")
                paragraphs: [
                    qsTr("Ostrafine captures system audio natively (no driver, no settings changes). The first time you click **Start**, macOS asks for **System Audio Recording** permission — approve it once."),
                    qsTr("If you denied it by accident: System Settings → Privacy & Security → Screen & System Audio Recording → enable Ostrafine, then Start again."),
                    qsTr("While Ostrafine is running, the original (unprocessed) audio is muted automatically — you hear only the processed signal. On Stop or quit, normal audio resumes by itself.")
                ]
            }
            SetupStep {
                Layout.fillWidth: true
                number: 3
                title: qsTr("Play something")
                paragraphs: [
                    qsTr("Play audio from Spotify, YouTube, or any app — it comes out of your speakers with all effects applied. Pick a preset from the toolbar, or shape the sound in the EQ / Spatial / Mixer tabs.")
                ]
            }
            SetupStep {
                Layout.fillWidth: true
                number: 4
                title: qsTr("Edifier MR5 tips (optional)")
                paragraphs: [qsTr("For the most neutral starting point on the MR5:")]
                points: [
                    qsTr("LED color: red = Monitor mode (short-press the volume knob)"),
                    qsTr("Bass and Treble knobs on the back: 0 (center position)"),
                    qsTr("Physical volume: 60-80% — the internal limiter kicks in above ~85%"),
                    qsTr("Do all tonal corrections in Ostrafine; leave the speaker knobs flat.")
                ]
            }
        }
    }
    DotCard {
        Layout.fillWidth: true

        ColumnLayout {
            id: status
            anchors.fill: parent
            spacing: 2 * Theme.unit

            RowLayout {
                Layout.fillWidth: true
                spacing: 2 * Theme.unit

                Rectangle {
                    implicitWidth: 1.5 * Theme.unit
                    implicitHeight: implicitWidth
                    radius: implicitWidth / 2
                    color: App.engine.running ? Theme.signal : Theme.dotMid
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: Theme.unit / 2

                    HeadingText {
                        Layout.fillWidth: true
                        text: App.engine.running ? qsTr("Processing is running") : qsTr("Ready to start")
                    }
                    BodyText {
                        Layout.fillWidth: true
                        wrapMode: Text.WordWrap
                        text: App.engine.running ? qsTr("System audio is being captured and processed live.") : qsTr("Click Start in the toolbar to begin system-wide processing. No driver or manual routing needed.")
                    }
                    BodyText {
                        Layout.fillWidth: true
                        visible: text !== ""
                        wrapMode: Text.WordWrap
                        text: App.engine.outlook
                        color: Theme.warning
                    }
                }
            }
            DriverNote {
                Layout.fillWidth: true
            }
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
