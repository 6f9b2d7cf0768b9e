import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The live panel: whether it runs, what is heard, and what the level stages do about it.
DotCard {
    id: panel

    readonly property bool failed: App.engine.state === "error"

    implicitHeight: Math.max(18 * Theme.unit, words.implicitHeight + topPadding + bottomPadding)

    RowLayout {
        anchors.fill: parent
        spacing: 3 * Theme.unit

        ColumnLayout {
            id: words
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: Theme.unit

            RowLayout {
                Layout.fillWidth: true
                spacing: 2 * Theme.unit

                DotText {
                    text: App.engine.stateWord
                    dotSize: 4
                    color: panel.failed ? Theme.warning : App.engine.running ? Theme.signal : Theme.ink
                    Accessible.role: Accessible.StaticText
                    Accessible.name: App.engine.stateWord
                }
                DotChip {
                    visible: App.engine.comparing
                    lit: true
                    text: qsTr("Unprocessed sound")
                }
                CaptionText {
                    Layout.fillWidth: true
                    text: App.engine.outlook
                    wrapMode: Text.WordWrap
                    color: Theme.ink
                }
            }
            DotAlert {
                objectName: "errorAlert"
                text: panel.failed ? App.engine.errorMessage + " " + App.engine.outlook : ""
            }
            Item {
                Layout.fillHeight: true
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.unit

                CopyableText {
                    id: subtitle
                    Layout.fillWidth: true
                    text: App.engine.subtitle
                    color: panel.failed ? Theme.warning : Theme.ink
                    accessibleName: qsTr("Status")
                }
                DotButton {
                    Layout.alignment: Qt.AlignTop
                    visible: App.engine.comingBack
                    flat: true
                    text: qsTr("Stop waiting")
                    help: qsTr("Processing stays off until the next Start")
                    onClicked: App.engine.stop()
                }
                DotButton {
                    Layout.alignment: Qt.AlignTop
                    visible: panel.failed
                    flat: true
                    text: qsTr("Copy")
                    help: qsTr("Copies the error's text")
                    onClicked: subtitle.copyAll()
                }
            }
            CaptionText {
                Layout.fillWidth: true
                text: App.engine.secondLine
            }
            CaptionText {
                Layout.fillWidth: true
                visible: App.engine.losses !== ""
                text: App.engine.losses
            }
        }
        ColumnLayout {
            Layout.fillHeight: true
            // A whole number of dots for each of the 32 columns.
            Layout.preferredWidth: (panel.width < 120 * Theme.unit ? 32 : 64) * Theme.unit
            Layout.minimumWidth: Layout.preferredWidth
            Layout.maximumWidth: Layout.preferredWidth
            spacing: 0

            CaptionText {
                text: qsTr("Live spectrum")
                Accessible.ignored: true
            }
            Item {
                Layout.fillHeight: true
            }
            DotBars {
                Layout.fillWidth: true
                Layout.preferredHeight: 12 * Theme.unit
                levels: App.spectrum.levels
                rows: 12
                active: App.spectrum.active
                accessibleName: qsTr("Live spectrum")
            }
        }
        ColumnLayout {
            Layout.preferredWidth: 12 * Theme.unit
            Layout.minimumWidth: 12 * Theme.unit
            Layout.maximumWidth: 12 * Theme.unit
            Layout.fillHeight: true
            spacing: Theme.unit

            Readout {
                caption: qsTr("Reduction")
                value: App.engine.reductionText
            }
            Item {
                Layout.fillHeight: true
            }
            Readout {
                caption: qsTr("Auto-gain")
                value: App.engine.autoGainText
            }
        }
    }
}
