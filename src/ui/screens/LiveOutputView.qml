import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The live panel: state, preset or error, spectrum, and the meters of the level stages.
DotCard {
    id: panel

    readonly property bool failed: App.engine.state === "error"

    /// Compact layout for small windows: one line with the texts and the limiter's reduction.
    property bool line: false

    padding: (line ? 1 : 2) * Theme.unit
    horizontalPadding: 2 * Theme.unit
    implicitHeight: Math.max(line ? 0 : 18 * Theme.unit, implicitContentHeight + topPadding + bottomPadding)

    RowLayout {
        anchors.fill: parent
        spacing: 3 * Theme.unit

        GridLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            // Gives an error the full width of a narrow line.
            columns: panel.line && !(panel.failed && panel.width < 60 * Theme.textUnit) ? 2 : 1
            columnSpacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            RowLayout {
                Layout.fillWidth: !panel.line
                spacing: 2 * Theme.unit

                DotText {
                    text: App.engine.stateWord
                    dotSize: panel.line ? 2 : 4
                    color: panel.failed ? Theme.warning : App.engine.running ? Theme.signal : Theme.ink
                    Accessible.role: Accessible.StaticText
                    Accessible.name: App.engine.stateWord

                    DotAlert {
                        objectName: "errorAlert"
                        anchors.fill: parent
                        text: panel.failed ? App.engine.errorMessage + " " + App.engine.outlook : ""
                    }
                }
                DotChip {
                    visible: App.engine.comparing
                    lit: true
                    text: qsTr("Unprocessed sound")
                }
                CaptionText {
                    Layout.fillWidth: true
                    visible: !panel.line
                    text: App.engine.outlook
                    color: Theme.ink
                }
            }
            Item {
                visible: !panel.line
                Layout.fillHeight: true
            }
            WrapRow {
                Layout.fillWidth: true
                stacked: !panel.line
                spacing: 2 * Theme.unit
                rowSpacing: Theme.unit

                WrapRow {
                    WrapRow.fills: panel.failed || !panel.line
                    WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                    spacing: Theme.unit

                    CopyableText {
                        id: subtitle
                        WrapRow.fills: panel.failed || !panel.line
                        WrapRow.minimumWidth: Math.min(implicitWidth, 20 * Theme.textUnit)
                        text: App.engine.subtitle
                        color: panel.failed ? Theme.warning : Theme.ink
                        accessibleName: qsTr("Status")
                    }
                    DotButton {
                        visible: App.engine.comingBack
                        flat: true
                        text: qsTr("Stop waiting")
                        help: qsTr("Processing stays off until the next Start")
                        onClicked: App.engine.stop()
                    }
                    DotButton {
                        visible: panel.failed
                        flat: true
                        text: qsTr("Copy")
                        help: qsTr("Copies the error's text")
                        onClicked: subtitle.copyAll()
                    }
                }
                CaptionText {
                    WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                    visible: panel.line && text !== ""
                    text: App.engine.outlook
                    color: Theme.ink
                }
                CaptionText {
                    readonly property string work: panel.line ? "" : App.level.limiterTimeText
                    WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                    text: work === "" ? App.engine.secondLine : App.engine.secondLine + " · " + work
                }
                HeldLevels {
                    WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                    visible: !panel.line || !panel.failed
                    compact: panel.line
                }
                CaptionText {
                    WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                    visible: App.engine.losses !== ""
                    text: App.engine.losses
                }
            }
        }
        BodyText {
            visible: panel.line && !panel.failed
            text: App.engine.reductionCompactText
        }
        ColumnLayout {
            visible: !panel.line
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
            visible: !panel.line
            Layout.preferredWidth: 12 * Theme.textUnit
            Layout.minimumWidth: Layout.preferredWidth
            Layout.maximumWidth: Layout.preferredWidth
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
