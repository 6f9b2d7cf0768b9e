import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// One band as a point on the curve. Dragging sets frequency and gain, a double click resets the band, and the wheel
/// sets Q while the point has the focus. The Tab key reaches the strips below instead.
FocusArea {
    id: point
    objectName: "bandPoint" + index

    required property int index
    required property double frequency
    required property double gain
    required property double q
    required property bool bypassed
    required property string frequencyLabel
    required property DotCurve curve
    /// Gain in dB at the top of the curve; the bottom has its negative.
    required property real rangeDB
    /// Preset gain plus global gain in dB, which shift the whole curve.
    required property real offsetDB

    property bool selected: false
    readonly property real centreX: curve && curve.width > 0 ? curve.xOfFrequency(frequency) : 0
    // Reads the curve's height so that the binding follows it.
    readonly property real centreY: curve && curve.height > 0 ? yOf(Math.max(-rangeDB, Math.min(rangeDB, gain + offsetDB))) : 0
    signal chosen

    function yOf(decibels: real): real {
        return curve.yOfHeight(0.5 + decibels / rangeDB / 2);
    }

    x: centreX - width / 2
    y: centreY - height / 2
    z: selected ? 1 : 0
    width: 3 * Theme.unit
    height: width
    activeFocusOnTab: false
    Accessible.ignored: true
    onWheelTurned: notches => sharpness.moveBy(notches)
    Keys.onPressed: event => {
        switch (event.key) {
        case Qt.Key_Up:
            level.moveBy(1);
            break;
        case Qt.Key_Down:
            level.moveBy(-1);
            break;
        case Qt.Key_PageUp:
            level.moveBy(10);
            break;
        case Qt.Key_PageDown:
            level.moveBy(-10);
            break;
        case Qt.Key_Left:
            pitch.moveBy(-1);
            break;
        case Qt.Key_Right:
            pitch.moveBy(1);
            break;
        case Qt.Key_Delete:
        case Qt.Key_Backspace:
            App.equalizer.bands.resetBand(point.index);
            break;
        default:
            return;
        }
        event.accepted = true;
    }

    ValueControl {
        id: pitch
        visible: false
        from: Math.log2(App.equalizer.minFrequency)
        to: Math.log2(App.equalizer.maxFrequency)
        value: Math.log2(Math.max(1, point.frequency))
        onMoved: App.equalizer.bands.setFrequency(point.index, Math.pow(2, value))
    }
    ValueControl {
        id: level
        visible: false
        from: App.equalizer.minGain
        to: App.equalizer.maxGain
        stepSize: App.equalizer.gainStep
        value: point.gain
        onMoved: App.equalizer.bands.setGain(point.index, value)
    }
    ValueControl {
        id: sharpness
        visible: false
        from: Math.log2(App.equalizer.minQ)
        to: Math.log2(App.equalizer.maxQ)
        stepSize: 0.25
        value: Math.log2(Math.max(App.equalizer.minQ, point.q))
        onMoved: App.equalizer.bands.setQ(point.index, Math.pow(2, value))
    }
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

        property point pressedAt // pointer position on the curve
        property point last
        property point held // dragged position, not clamped to the curve
        property bool movesX: false
        property bool movesY: false
        property bool wasReset: false

        // Pixels that a drag may stray from its axis before the other axis moves too.
        readonly property real stray: Theme.unit

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        cursorShape: pressed ? Qt.ClosedHandCursor : Qt.OpenHandCursor
        onPressed: event => {
            point.forceActiveFocus(Qt.MouseFocusReason);
            point.chosen();
            App.history.beginGesture();
            // Keeps the grab offset, so that a click alone moves nothing.
            pressedAt = last = mapToItem(point.curve, event.x, event.y);
            held = Qt.point(point.centreX, point.yOf(point.gain + point.offsetDB));
            movesX = movesY = false;
            wasReset = event.modifiers & Qt.ControlModifier;
            if (wasReset)
                App.equalizer.bands.resetBand(point.index);
        }
        onPositionChanged: event => {
            if (!pressed || wasReset)
                return;
            const at = mapToItem(point.curve, event.x, event.y);
            const x = Math.abs(at.x - pressedAt.x), y = Math.abs(at.y - pressedAt.y);
            movesX = movesX || x > Math.min(y, stray);
            movesY = movesY || y > Math.min(x, stray);
            const part = event.modifiers & Qt.ShiftModifier ? 0.1 : 1;
            const right = movesX ? (at.x - last.x) * part : 0;
            const down = movesY ? (at.y - last.y) * part : 0;
            last = at;
            held = Qt.point(held.x + right, held.y + down);
            if (right !== 0)
                pitch.moveTo(Math.log2(point.curve.frequencyAt(held.x)), right);
            if (down !== 0)
                level.moveTo((point.curve.heightAt(held.y) - 0.5) * 2 * point.rangeDB - point.offsetDB, -down);
        }
        onReleased: App.history.endGesture()
        onCanceled: App.history.endGesture()
        onDoubleClicked: {
            wasReset = true;
            App.equalizer.bands.resetBand(point.index);
        }
    }
}
