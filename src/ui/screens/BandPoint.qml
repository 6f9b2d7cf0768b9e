import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// One band as a point on the curve: dragged for frequency and gain, turned with the wheel for Q,
/// and put back by a double click. The strips below do the same from the keyboard.
Item {
    id: point
    objectName: "bandPoint" + index

    required property int index
    required property double frequency
    required property double gain
    required property double q
    required property bool bypassed
    required property string frequencyLabel
    required property DotCurve curve
    /// What half the curve's height stands for.
    required property real rangeDB

    property bool selected: false
    readonly property real centreX: curve && curve.width > 0 ? curve.xOfFrequency(frequency) : 0
    readonly property real shownDB: Math.max(-rangeDB, Math.min(rangeDB, gain + App.equalizer.globalGainDB))
    // Follows the curve's height, which the mapping depends on.
    readonly property real centreY: curve && curve.height > 0 ? curve.yOfHeight(0.5 + shownDB / rangeDB / 2) : 0
    signal chosen

    x: centreX - width / 2
    y: centreY - height / 2
    z: selected ? 1 : 0
    width: 3 * Theme.unit
    height: width
    Accessible.ignored: true

    Rectangle {
        anchors.centerIn: parent
        width: (point.selected ? 2 : 1.5) * Theme.unit
        height: width
        radius: width / 2
        color: point.bypassed ? Theme.card : point.selected ? Theme.signal : Theme.ink
        border.width: 2
        border.color: point.selected ? Theme.signal : point.bypassed ? Theme.inkSoft : Theme.ink
    }

    MouseArea {
        id: mouse

        property point grabbedAt

        function dragTo(x, y) {
            const hertz = point.curve.frequencyAt(x);
            App.equalizer.bands.setFrequency(point.index, hertz);
            const decibels = (point.curve.heightAt(y) - 0.5) * 2 * point.rangeDB - App.equalizer.globalGainDB;
            const steps = Math.round(decibels / App.equalizer.gainStep);
            App.equalizer.bands.setGain(point.index, steps * App.equalizer.gainStep);
        }

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        cursorShape: pressed ? Qt.ClosedHandCursor : Qt.OpenHandCursor
        onPressed: event => {
            point.chosen();
            // The point is held where it was touched, so that a click alone moves nothing.
            const at = mapToItem(point.curve, event.x, event.y);
            grabbedAt = Qt.point(at.x - point.centreX, at.y - point.centreY);
            App.history.beginGesture();
        }
        onPositionChanged: event => {
            if (!pressed)
                return;
            const at = mapToItem(point.curve, event.x, event.y);
            dragTo(at.x - grabbedAt.x, at.y - grabbedAt.y);
        }
        onReleased: App.history.endGesture()
        onCanceled: App.history.endGesture()
        onDoubleClicked: App.equalizer.bands.resetBand(point.index)
        onWheel: event => {
            point.chosen();
            App.equalizer.bands.setQ(point.index, point.q * Math.pow(2, event.angleDelta.y / 480));
        }
    }
}
