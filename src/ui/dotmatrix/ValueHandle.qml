import QtQuick
import Quorbel.Dotmatrix

// The interactive part of a value control: focus, keys, pointer and accessibility. The pointer drags the handle of
// `track`, an item of the same size below this one; without a track every drag is a turn.
FocusArea {
    id: handle

    required property ValueControl target
    property int role: Accessible.Slider
    property DotTrack track: null
    property bool movesSideways: true // by the keys Left and Right

    readonly property bool pressed: pointer.pressed
    readonly property bool hovered: pointer.containsMouse
    readonly property bool hot: pointer.pressed || pointer.containsMouse

    // Assistive technology reads the properties of these names, and writes `value`.
    property real value: target.value
    readonly property real minimumValue: target.from
    readonly property real maximumValue: target.to
    readonly property real stepSize: target.step

    focus: true
    onValueChanged: {
        if (value !== target.value) {
            const wanted = value;
            value = Qt.binding(() => handle.target.value);
            target.moveTo(wanted);
        }
    }

    onWheelTurned: notches => target.moveBy(notches)

    Accessible.role: role
    Accessible.name: target.accessibleName
    Accessible.description: target.valueText
    Accessible.focusable: true
    Accessible.onIncreaseAction: target.moveBy(1)
    Accessible.onDecreaseAction: target.moveBy(-1)

    Keys.onPressed: event => {
        if (!movesSideways && (event.key === Qt.Key_Left || event.key === Qt.Key_Right))
            return;
        switch (event.key) {
        case Qt.Key_Up:
        case Qt.Key_Right:
            target.moveBy(1);
            break;
        case Qt.Key_Down:
        case Qt.Key_Left:
            target.moveBy(-1);
            break;
        case Qt.Key_PageUp:
            target.moveBy(10);
            break;
        case Qt.Key_PageDown:
            target.moveBy(-10);
            break;
        case Qt.Key_Home:
            target.moveTo(target.from, target.from - target.to);
            break;
        case Qt.Key_End:
            target.moveTo(target.to, target.to - target.from);
            break;
        case Qt.Key_Delete:
        case Qt.Key_Backspace:
            target.resetRequested();
            break;
        default:
            return;
        }
        event.accepted = true;
    }

    MouseArea {
        id: pointer

        property real held: 0 // dragged position, not clamped to the ends
        property point last
        property bool wasReset: false

        // Drag distance in pixels from one end to the other.
        readonly property real turnLength: 160

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true

        onPressed: mouse => {
            handle.forceActiveFocus(Qt.MouseFocusReason);
            wasReset = mouse.modifiers & Qt.ControlModifier;
            if (wasReset) {
                handle.target.resetRequested();
                return;
            }
            last = Qt.point(mouse.x, mouse.y);
            held = handle.target.position;
            if (handle.track !== null && !handle.track.isHandle(mouse.x, mouse.y)) {
                held = handle.track.positionAt(mouse.x, mouse.y);
                handle.target.moveToPosition(held);
            }
        }
        onPositionChanged: mouse => {
            if (!pressed || wasReset)
                return;
            const track = handle.track;
            const way = track === null ? (mouse.x - last.x - mouse.y + last.y) / turnLength : track.positionAt(mouse.x, mouse.y) - track.positionAt(last.x, last.y);
            last = Qt.point(mouse.x, mouse.y);
            if (way === 0)
                return;
            held += way * (mouse.modifiers & Qt.ShiftModifier ? 0.1 : 1);
            handle.target.moveToPosition(held, way);
        }
        onDoubleClicked: {
            wasReset = true;
            handle.target.resetRequested();
        }
    }
}
