pragma ComponentBehavior: Bound

import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Testing

// Slider and knob: one value, changed by keys, pointer and assistive technology. The single keys: tst_keys.qml of the
// screens.
ControlCase {
    id: root

    name: "values"

    property real gain: 0
    property int writes: 0
    property Component slider: DotSlider {}
    property Component knob: DotKnob {}
    readonly property var kinds: ({
            horizontal: { component: slider, role: "Slider", properties: { width: 216, origin: 0 } }, // a travel of 200
            vertical: { component: slider, role: "Slider", properties: { height: 216, orientation: Qt.Vertical } },
            knob: { component: knob, role: "Dial", properties: {} }
        })

    function make(kind: string): ValueControl {
        gain = writes = 0;
        const { component, properties } = kinds[kind];
        const control = createTemporaryObject(component, root, Object.assign({ from: -10, to: 10, stepSize: 0.1,
                accessibleName: "Gain" }, properties)) as ValueControl;
        control.value = Qt.binding(() => gain);
        control.valueText = Qt.binding(() => gain.toFixed(1) + " dB");
        control.moved.connect(() => {
            gain = control.value;
            ++writes;
        });
        control.resetRequested.connect(() => gain = 0);
        control.forceActiveFocus(Qt.TabFocusReason);
        verify(control.activeFocus);
        return control;
    }
    function every() {
        return Object.keys(kinds).map(kind => ({ tag: kind }));
    }

    function test_steps_hit_the_decimals_and_end_at_the_ends() {
        // 0.1 has no exact binary form; a hundred steps must still reach exact decimals.
        make("horizontal");
        keyClick(Qt.Key_Home);
        for (let step = 1; step <= 202; ++step) {
            keyClick(Qt.Key_Right);
            compare(gain, Math.min((step - 100) / 10, 10));
        }
        compare(writes, 201);
        const control = make("knob");
        control.from = -3.32;
        control.to = 4.32;
        for (const [key, expected] of [[Qt.Key_End, 4.32], [Qt.Key_Down, 4.2], [Qt.Key_Up, 4.3], [Qt.Key_Up, 4.32], [Qt.Key_Home, -3.32]]) {
            keyClick(key);
            compare(gain, expected);
        }
    }

    function test_assistive_technology_data() {
        return every();
    }
    function test_assistive_technology(data) {
        const control = make(data.tag);
        const seen = () => Assistive.find("Gain", kinds[data.tag].role);
        const { description, focusable, from, to, value } = seen();
        compare([description, focusable, from, to, value], ["0.0 dB", true, -10, 10, 0]);
        // Values between two steps and beyond the end: the control shows the value that it reaches.
        for (const [wanted, reached] of [[2.5, 2.5], [2.54, 2.5], [99, 10]]) {
            Assistive.setValue("Gain", wanted);
            compare([gain, seen().value], [reached, reached]);
        }
        verify(Assistive.act("Gain", "Decrease"));
        compare(gain, 9.9);
        verify(Assistive.act("Gain", "Increase"));
        compare(gain, 10);
        // The binding survives assistive technology, a key and the pointer.
        keyClick(Qt.Key_End);
        mouseClick(control, 8, control.height - 8);
        writes = 0;
        gain = -3.3;
        compare([control.value, seen().value], [-3.3, -3.3]);
        control.from = -2;
        compare([control.value, control.position, writes], [-3.3, 0, 0], "the model's moves are not the user's");
    }

    function test_drag_by_the_handle() {
        const control = make("horizontal");
        // Pressed off-centre, the handle stays until the pointer moves. A pointer beyond the end must first come back.
        mousePress(control, 108 + 5, 12);
        verify(control.pressed);
        compare(writes, 0);
        for (const [way, expected] of [[50, 5], [500, 10], [100, 10], [20, 2]]) {
            mouseMove(control, 108 + 5 + way, 12);
            compare(gain, expected);
        }
        mouseRelease(control, 108 + 5 + 20, 12);
        verify(!control.pressed);
        compare(gain, 2);
    }

    function test_press_on_the_track_and_turn() {
        mouseClick(make("horizontal"), 8 + 150, 12);
        compare(gain, 5);
        mouseClick(make("vertical"), 12, 8 + 50);
        compare(gain, 5);
        const control = make("knob");
        mousePress(control, 36, 36);
        mouseMove(control, 36, 36 - 40);
        compare(gain, 5); // the range takes 160 pixels
        mouseMove(control, 36 + 40, 36 - 40);
        compare(gain, 10);
        mouseRelease(control, 36 + 40, 36 - 40);
    }

    function test_double_click_asks_for_the_default_data() {
        return every();
    }
    function test_double_click_asks_for_the_default(data) {
        const control = make(data.tag);
        gain = 4;
        mouseDoubleClickSequence(control, control.width / 2 + 4, control.height / 2 - 8);
        compare(gain, 0);
        // Later movements of the pointer change nothing.
        mouseClick(control, control.width / 2, control.height / 2);
        compare(gain, 0);
    }

    function test_a_value_outside_of_the_range_data() {
        // From -20 or 20, in a range of -10 to 10: stays, or moves to the nearer end.
        const drag = (control, way) => {
            mousePress(control, control.width / 2 - 100, 12);
            mouseMove(control, control.width / 2 - 100 + way, 12);
            mouseRelease(control, control.width / 2 - 100 + way, 12);
        };
        return [
            { tag: "step away", value: -20, move: () => keyClick(Qt.Key_Down), expected: -20 },
            { tag: "step back", value: -20, move: () => keyClick(Qt.Key_Up), expected: -10 },
            { tag: "page away", value: 20, move: () => keyClick(Qt.Key_PageUp), expected: 20 },
            { tag: "page back", value: 20, move: () => keyClick(Qt.Key_PageDown), expected: 10 },
            { tag: "lowest", value: -20, move: () => keyClick(Qt.Key_Home), expected: -20 },
            { tag: "highest", value: -20, move: () => keyClick(Qt.Key_End), expected: 10 },
            { tag: "wheel away", value: 20, move: control => mouseWheel(control, 100, 12, 0, 120), expected: 20 },
            { tag: "wheel back", value: 20, move: control => mouseWheel(control, 100, 12, 0, -120), expected: 10 },
            { tag: "click on the handle", value: -20, move: control => drag(control, 0), expected: -20 },
            { tag: "drag away", value: -20, move: control => drag(control, -5), expected: -20 },
            { tag: "drag back", value: -20, move: control => drag(control, 1), expected: -9.9 },
            { tag: "assistive technology", value: -20, move: () => Assistive.setValue("Gain", -10), expected: -10 }
        ];
    }
    function test_a_value_outside_of_the_range(data) {
        const control = make("horizontal");
        gain = data.value;
        data.move(control);
        compare(gain, data.expected);
    }

    property Component toggle: DotToggle {}

    function test_focus_that_the_pointer_takes_needs_no_ring() {
        const first = createTemporaryObject(toggle, root, { y: 60 });
        const second = make("horizontal");
        verify(second.visualFocus);
        keyClick(Qt.Key_Backtab);
        verify(first.visualFocus);
        mouseClick(second, 20, 12);
        verify(second.activeFocus && !second.visualFocus);
    }

    function test_motion_is_reduced_on_request() {
        verify(Theme.duration > 0);
        Look.setReducedMotion(true);
        compare(Theme.duration, 0);
        Look.setReducedMotion(false);
    }
}
