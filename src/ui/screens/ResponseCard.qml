import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The equaliser's response: the curve with a point for each band, what is heard faintly behind it,
/// and the gain of all bands together.
DotCard {
    id: card

    property int selectedBand: 0
    signal bandChosen(int row)

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.unit

        RowLayout {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit

            CaptionText {
                text: qsTr("RESPONSE")
                font.letterSpacing: 1
                Accessible.role: Accessible.Heading
            }
            Item {
                Layout.fillWidth: true
            }
            BodyText {
                text: qsTr("Global")
                Accessible.ignored: true
            }
            ParamSlider {
                Layout.preferredWidth: 21 * Theme.unit
                Layout.minimumWidth: 14 * Theme.unit
                Layout.fillWidth: true
                Layout.maximumWidth: 31 * Theme.unit
                from: App.equalizer.minGain
                to: App.equalizer.maxGain
                stepSize: App.equalizer.gainStep
                origin: 0
                value: App.equalizer.globalGainDB
                accessibleName: qsTr("Global")
                valueText: App.equalizer.globalGainText
                onMoved: App.equalizer.globalGainDB = value
                onResetRequested: App.equalizer.globalGainDB = 0
            }
            ValueField {
                Layout.preferredWidth: 8 * Theme.unit
                valueText: App.equalizer.globalGainText
                function parse(text: string): real {
                    return App.equalizer.parseGain(text);
                }
                accessibleName: qsTr("Global gain, typed")
                onCommitted: value => App.equalizer.globalGainDB = value
            }
            Item {
                Layout.fillWidth: true
            }
            DotToggle {
                id: exact
                text: qsTr("Exact response")
                accessibleName: qsTr("Show the exact response")
            }
            CaptionText {
                text: App.equalizer.peakText
                font.pixelSize: Theme.bodySize
                color: Theme.ink
            }
        }
        DotCurve {
            id: plot
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 12 * Theme.unit
            values: App.equalizer.curveValues
            secondaryValues: exact.checked ? App.equalizer.exactValues : []
            // The analyzer's 32 bands, 30 Hz to 16 kHz, on an axis of 35 such bands: to 0.02 octaves.
            spectrum: App.spectrum.active ? [0, 0, ...App.spectrum.levels, 0] : []
            octaveMarks: true
            zeroLine: true
            accessibleName: qsTr("Response curve")
            Accessible.description: App.equalizer.peakText

            Repeater {
                model: App.equalizer.bands
                delegate: BandPoint {
                    // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                    // qmllint disable unqualified
                    curve: plot
                    rangeDB: App.equalizer.drawnRangeDB
                    selected: card.selectedBand === index
                    onChosen: card.bandChosen(index)
                    // qmllint enable unqualified
                }
            }
        }
        Item {
            id: axis
            Layout.fillWidth: true
            implicitHeight: low.implicitHeight

            CaptionText {
                id: low
                text: qsTr("20 Hz")
            }
            Repeater {
                model: [
                    { hertz: 100, label: qsTr("100") },
                    { hertz: 1000, label: qsTr("1k") },
                    { hertz: 10000, label: qsTr("10k") }
                ]
                delegate: CaptionText {
                    required property var modelData
                    // Follows the curve's width, which the mapping depends on.
                    // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                    // qmllint disable unqualified
                    x: plot.width > 0 ? plot.xOfFrequency(modelData.hertz) - width / 2 : 0
                    // qmllint enable unqualified
                    text: modelData.label
                }
            }
            CaptionText {
                anchors.right: parent.right
                text: qsTr("20 kHz")
            }
        }
    }
}
