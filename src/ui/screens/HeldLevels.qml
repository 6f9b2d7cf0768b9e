import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// The tell-tale: the highest levels since the last clearing, and a button that lowers the level.
WrapRow {
    id: held

    /// Shows only the sample peak, at a constant width, and the rest in the help: dragging a band must not move
    /// the curve.
    property bool compact: false

    readonly property string rest: {
        const work = App.level.limiterTimeText;
        const excess = App.level.excessDB;
        return [App.level.heldPeakText, work === "" ? "" : qsTr("limiter at work for %1").arg(work), excess > 0 ? qsTr("too loud by %1 dB").arg(Format.fixed(excess, 1)) : ""].filter(text => text !== "").join(", ") + ". ";
    }

    TextMetrics {
        id: widest
        font.family: Theme.fontFamily
        font.pixelSize: Theme.captionSize
        text: "Peak -88.8 dBFS"
    }

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
        WrapRow.minimumWidth: held.compact ? Math.max(implicitWidth, Math.ceil(widest.advanceWidth) + rightPadding) : implicitWidth
        text: held.compact ? App.level.heldSamplePeakText : App.level.heldPeakText
        help: (held.compact ? held.rest : "") + qsTr("The highest level since it was cleared. Press to clear it.")
        onClicked: App.level.clearHeld()
    }
    SmallButton {
        objectName: "lowerByExcess"
        leftPadding: Theme.unit / 2
        visible: !held.compact && App.level.excessDB > 0
        text: App.level.lowerText
        font.bold: true
        help: qsTr("Lowers Global, or the target of Auto-Gain while it is on, by the largest reduction")
        onClicked: App.level.lowerByExcess()
    }
}
