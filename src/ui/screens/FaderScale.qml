pragma ComponentBehavior: Bound

import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// Gain marks and units of the strips beside it.
Item {
    id: units

    /// Any strip; the marks are level with its slider.
    required property BandStripView strip
    readonly property real highest: strip?.topOfGain ?? 0
    readonly property real lowest: strip?.bottomOfGain ?? 0

    implicitWidth: metrics.width
    visible: strip !== null

    TextMetrics {
        id: metrics
        font.family: Theme.fontFamily
        font.pixelSize: Theme.captionSize
        text: "+12 dB"
    }
    Repeater {
        model: App.equalizer.gainMarks
        delegate: CaptionText {
            required property real modelData

            anchors.right: parent?.right
            y: units.highest + (units.lowest - units.highest) * (App.equalizer.maxGain - modelData) / (App.equalizer.maxGain - App.equalizer.minGain) - height / 2
            // Hides the marks between multiples of 12 dB where they would overlap.
            visible: modelData % 12 === 0 || (units.lowest - units.highest) / 4 >= height
            text: Format.gainMark(modelData)
            Accessible.ignored: true // each slider tells its value and unit
        }
    }
    CaptionText {
        anchors.right: parent.right
        y: (units.strip?.frequencyCentre ?? 0) - height / 2
        text: qsTr("Hz")
        Accessible.ignored: true
    }
}
