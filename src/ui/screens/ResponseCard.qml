import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The equaliser's response: the curve with a point for each band, the live spectrum behind it, and the gains
/// common to all bands.
DotCard {
    id: card

    property int selectedBand: 0
    property int hoveredBand: -1
    signal bandChosen(int row)

    /// Band with its values shown as text: the hovered one, or else the selected one.
    readonly property var readPoint: points.itemAt(Math.min(hoveredBand >= 0 ? hoveredBand : selectedBand, points.count - 1))

    function heightOf(dB: real): real {
        return 0.5 + dB / App.equalizer.drawnRangeDB / 2;
    }

    // Widths of the longest texts, reserved so that a longer value moves nothing.
    component Measure: TextMetrics {
        font.family: Theme.fontFamily
    }
    Measure {
        id: widestPoint
        font.pixelSize: Theme.captionSize
        text: "20000 Hz · +12.0 dB · Q 20.00"
    }
    Measure {
        id: widestPeak
        font.pixelSize: Theme.bodySize
        text: "-88.8 dB peak"
    }
    Measure {
        id: widestHighest
        font.pixelSize: Theme.bodySize
        text: qsTr("Highest %1").arg("-88.8 dB")
    }
    Measure {
        id: widestLower
        font.pixelSize: Theme.bodySize
        text: qsTr("Lower by %1 dB").arg("88.8")
    }
    Measure {
        id: widestDecibels
        font.pixelSize: Theme.captionSize
        text: "+12 dB"
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.unit

        WrapRow {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            ColumnLayout {
                WrapRow.minimumWidth: Math.ceil(widestPoint.advanceWidth)
                spacing: 0

                CaptionText {
                    text: qsTr("RESPONSE")
                    font.letterSpacing: 1
                    Accessible.role: Accessible.Heading
                    Accessible.description: help.text

                    HoverHandler {
                        id: overHeading
                    }
                    DotToolTip {
                        id: help
                        atStart: true
                        visible: overHeading.hovered
                        text: StageTexts.help("Equalizer")
                    }
                }
                CaptionText {
                    Layout.fillWidth: true
                    readonly property var point: card.readPoint
                    text: point !== null ? Format.hertz(point.frequency) + " · " + Format.signedDecibels(point.gain) + " · Q " + Format.fixed(point.q, 2) : ""
                    color: Theme.ink
                }
            }
            BodyText {
                WrapRow.trailing: true
                text: qsTr("Global")
                Accessible.ignored: true
            }
            ParamSlider {
                WrapRow.minimumWidth: 12 * Theme.unit
                WrapRow.maximumWidth: 31 * Theme.unit
                WrapRow.fills: true
                from: App.equalizer.minGain
                to: App.equalizer.maxGain
                stepSize: App.equalizer.gainStep
                origin: 0
                ticks: App.equalizer.gainMarks
                value: App.equalizer.globalGainDB
                accessibleName: qsTr("Global")
                valueText: App.equalizer.globalGainText
                onMoved: App.equalizer.globalGainDB = value
                onResetRequested: App.equalizer.globalGainDB = 0
            }
            ValueField {
                WrapRow.minimumWidth: Math.max(8 * Theme.textUnit, contentWidth + Theme.unit)
                implicitWidth: 8 * Theme.textUnit
                valueText: App.equalizer.globalGainText
                function parse(text: string): real {
                    return App.equalizer.parseGain(text);
                }
                accessibleName: qsTr("Global gain, typed")
                onCommitted: value => App.equalizer.globalGainDB = value
            }
            BodyText {
                WrapRow.trailing: true
                visible: presetGain.visible
                text: qsTr("Preset")
                Accessible.ignored: true
            }
            ValueField {
                id: presetGain
                WrapRow.minimumWidth: Math.max(8 * Theme.textUnit, contentWidth + Theme.unit)
                implicitWidth: 8 * Theme.textUnit
                // Hidden at 0 dB, the gain of most presets.
                visible: App.level.presetGainDB !== 0 || activeFocus
                valueText: App.level.presetGainText
                function parse(text: string): real {
                    return App.equalizer.parseGain(text);
                }
                accessibleName: qsTr("Gain of the preset, typed")
                onCommitted: value => App.level.presetGainDB = value
            }
            DotToggle {
                id: exact
                WrapRow.trailing: true
                text: qsTr("Exact response")
                accessibleName: qsTr("Show the exact response")
            }
            CaptionText {
                // Reserves the longest text, so that a longer value moves nothing.
                WrapRow.minimumWidth: Math.max(implicitWidth, Math.ceil(widestPeak.advanceWidth))
                horizontalAlignment: x > 0 ? Text.AlignRight : Text.AlignLeft
                text: App.equalizer.peakText
                font.pixelSize: Theme.bodySize
                color: Theme.ink
            }
            CaptionText {
                WrapRow.minimumWidth: Math.max(implicitWidth, Math.ceil(widestHighest.advanceWidth))
                horizontalAlignment: x > 0 ? Text.AlignRight : Text.AlignLeft
                text: qsTr("Highest %1").arg(App.level.highestPointText)
                font.pixelSize: Theme.bodySize
                color: Theme.ink

                HoverHandler {
                    id: overHighest
                }
                DotToolTip {
                    visible: overHighest.hovered
                    text: qsTr("Headroom: the highest point of equalizer and tone with all gains. Above 0 dB, loud sound has to be limited.")
                }
            }
            DotButton {
                objectName: "lowerToFullScale"
                // Always visible in a wide window, at a constant width: dragging a band must not move the curve.
                visible: enabled || card.width >= 120 * Theme.textUnit
                implicitWidth: Math.ceil(widestLower.advanceWidth) + leftPadding + rightPadding
                enabled: App.level.overshoots
                text: App.level.lowerToFullScaleText
                help: qsTr("Lowers the preset's gain until the highest point is at 0 dB")
                onClicked: App.level.lowerToFullScale()
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 12 * Theme.unit
            Layout.preferredHeight: 12 * Theme.unit
            spacing: Theme.unit / 2

            Item {
                Layout.fillHeight: true
                implicitWidth: widestDecibels.width

                Repeater {
                    model: App.equalizer.gainMarks
                    delegate: CaptionText {
                        required property real modelData
                        anchors.right: parent?.right
                        // Reads the curve's height so that the binding follows it.
                        // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                        // qmllint disable unqualified
                        y: plot.height > 0 ? plot.yOfHeight(card.heightOf(modelData)) - height / 2 : 0
                        visible: modelData % 12 === 0 || plot.height > 0 && plot.yOfHeight(card.heightOf(0)) - plot.yOfHeight(card.heightOf(6)) >= height
                        // qmllint enable unqualified
                        text: Format.gainMark(modelData)
                        Accessible.ignored: true
                    }
                }
            }
            DotCurve {
                id: plot
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: 12 * Theme.unit
                values: App.equalizer.curveValues
                secondaryValues: exact.checked ? App.equalizer.exactValues : []
                spectrum: App.spectrum.active ? App.spectrum.levels : []
                spectrumEdges: App.spectrum.edges
                octaveMarks: true
                zeroLine: true
                markedHeights: Array.from(App.equalizer.gainMarks, card.heightOf)
                dimmed: App.engine.comparing
                accessibleName: qsTr("Response curve")
                Accessible.description: App.equalizer.peakText

                Repeater {
                    id: points
                    model: App.equalizer.bands
                    delegate: BandPoint {
                        // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                        // qmllint disable unqualified
                        curve: plot
                        rangeDB: App.equalizer.drawnRangeDB
                        offsetDB: App.equalizer.totalGainDB
                        selected: card.selectedBand === index
                        opacity: App.engine.comparing ? Theme.disabledOpacity : 1
                        onChosen: card.bandChosen(index)

                        HoverHandler {
                            onHoveredChanged: {
                                if (hovered)
                                    card.hoveredBand = parent.index;
                                else if (card.hoveredBand === parent.index)
                                    card.hoveredBand = -1;
                            }
                        }
                        // qmllint enable unqualified
                    }
                }
            }
        }
        Item {
            id: axis
            Layout.fillWidth: true
            implicitHeight: low.implicitHeight

            CaptionText {
                id: low
                x: plot.x
                text: qsTr("20 Hz")
            }
            Repeater {
                model: plot.octaves
                delegate: CaptionText {
                    required property real modelData
                    // Reads the curve's width so that the binding follows it.
                    // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                    // qmllint disable unqualified
                    x: plot.width > 0 ? plot.x + plot.xOfFrequency(modelData) - width / 2 : 0
                    visible: x > low.x + low.width && x + width < high.x
                    // qmllint enable unqualified
                    text: Format.shortHertz(modelData)
                    Accessible.ignored: true
                }
            }
            CaptionText {
                id: high
                anchors.right: parent.right
                text: qsTr("20 kHz")
            }
        }
    }
}
