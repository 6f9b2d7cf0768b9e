import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// The tell-tale: the highest levels since they were cleared, and the way to a lower level.
WrapRow {
    spacing: Theme.unit
    rowSpacing: 0

    component SmallButton: DotButton {
        implicitHeight: Theme.fieldHeight
        leftPadding: 0
        rightPadding: Theme.unit / 2
        flat: true
        font.pixelSize: Theme.captionSize
    }

    SmallButton {
        objectName: "clearHeld"
        text: App.level.heldPeakText
        help: qsTr("The highest level since it was cleared. Press to clear it.")
        onClicked: App.level.clearHeld()
    }
    SmallButton {
        objectName: "lowerByExcess"
        leftPadding: Theme.unit / 2
        visible: App.level.excessDB > 0
        text: App.level.lowerText
        font.bold: true
        help: qsTr("Lowers Global, or the target of Auto-Gain while it is on, by the largest reduction")
        onClicked: App.level.lowerByExcess()
    }
}
