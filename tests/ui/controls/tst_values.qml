pragma ComponentBehavior: Bound

import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Probe

// Slider and knob: one value, moved by keys, pointer and assistive technology.
ControlCase {
    id: root

    name: "values"

    QtObject {
        id: model

        property real gain: 0
        property int writes: 0
    }

    Component {
        id: horizontal

        DotSlider {
            width: 216 // a travel of 200
            from: -10
            to: 10
            origin: 0
            stepSize: 0.1
            accessibleName: "Gain"
            valueText: model.gain.toFixed(1) + " dB"
            value: model.gain
            onMoved: {
                model.gain = value;
                ++model.writes;
            }
            onResetRequested: model.gain = 0
        }
    }
    Component {
        id: vertical

        DotSlider {
            height: 216
            orientation: Qt.Vertical
            from: -10
            to: 10
            stepSize: 0.1
            accessibleName: "Gain"
            valueText: model.gain.toFixed(1) + " dB"
            value: model.gain
            onMoved: {
                model.gain = value;
                ++model.writes;
            }
            onResetRequested: model.gain = 0
        }
    }
    Component {
        id: knob

        DotKnob {
            from: -10
            to: 10
            stepSize: 0.1
            accessibleName: "Gain"
            valueText: model.gain.toFixed(1) + " dB"
            value: model.gain
            onMoved: {
                model.gain = value;
                ++model.writes;
            }
            onResetRequested: model.gain = 0
        }
    }

    function make(component: Component): ValueControl {
        model.gain = 0;
        model.writes = 0;
        const control = createTemporaryObject(component, root) as ValueControl;
        control.forceActiveFocus(Qt.TabFocusReason);
        verify(control.activeFocus);
        return control;
    }

    function every() {
        return [
            {
                tag: "horizontal",
                component: horizontal,
                role: Accessible.Slider
            },
            {
                tag: "vertical",
                component: vertical,
                role: Accessible.Slider
            },
            {
                tag: "knob",
                component: knob,
                role: Accessible.Dial
            }
        ];
    }

    function test_keys_data() {
        return every();
    }
    function test_keys(data) {
        make(data.component);
        for (const [key, expected] of [[Qt.Key_Right, 0.1], [Qt.Key_Up, 0.2], [Qt.Key_Left, 0.1], [Qt.Key_Down, 0], [Qt.Key_PageUp, 1], [Qt.Key_PageDown, 0], [Qt.Key_PageDown, -1], [Qt.Key_Home, -10], [Qt.Key_Down, -10], [Qt.Key_End, 10], [Qt.Key_PageUp, 10], [Qt.Key_Delete, 0]]) {
            keyClick(key);
            compare(model.gain, expected);
        }
        // The two keys at the ends moved nothing, and the last asked for the default.
        compare(model.writes, 9);
    }

    function test_steps_hit_the_decimals(data) {
        // 0.1 is no number of the machine's; a hundred steps must still arrive at written values.
        make(horizontal);
        keyClick(Qt.Key_Home);
        for (let step = 1; step <= 200; ++step) {
            keyClick(Qt.Key_Right);
            compare(model.gain, (step - 100) / 10);
        }
    }

    function test_binding_outlives_moves_data() {
        return every();
    }
    function test_binding_outlives_moves(data) {
        const control = make(data.component);
        keyClick(Qt.Key_End);
        mouseClick(control, 8, control.height - 8);
        Probe.setValue(control, 5);
        model.gain = -3.3;
        compare(control.value, -3.3);
        compare(Probe.value(control), -3.3);
    }

    function test_assistive_technology_data() {
        return every();
    }
    function test_assistive_technology(data) {
        const control = make(data.component);
        compare(Probe.role(control), data.role);
        compare(Probe.name(control), "Gain");
        compare(Probe.description(control), "0.0 dB");
        verify(Probe.focusable(control));
        compare(Probe.minimum(control), -10);
        compare(Probe.maximum(control), 10);
        compare(Probe.value(control), 0);
        Probe.setValue(control, 2.5);
        compare(model.gain, 2.5);
        compare(Probe.value(control), 2.5);
        // Between two steps, and beyond the end: what is reached is what is shown.
        Probe.setValue(control, 2.54);
        compare(model.gain, 2.5);
        compare(Probe.value(control), 2.5);
        Probe.setValue(control, 99);
        compare(model.gain, 10);
        Probe.act(control, "Decrease");
        compare(model.gain, 9.9);
        Probe.act(control, "Increase");
        compare(model.gain, 10);
    }

    function test_model_moves_are_not_the_users_data() {
        return every();
    }
    function test_model_moves_are_not_the_users(data) {
        const control = make(data.component);
        model.gain = 7;
        control.from = -5;
        control.to = 5;
        compare(control.value, 7);
        compare(control.position, 1);
        compare(model.writes, 0);
    }

    function test_drag_by_the_handle() {
        const control = make(horizontal);
        // Taken beside its middle the handle stays where it is until it is moved.
        mousePress(control, 108 + 5, 12);
        verify(control.pressed);
        compare(model.writes, 0);
        mouseMove(control, 108 + 5 + 50, 12);
        compare(model.gain, 5);
        mouseMove(control, 108 + 5 + 500, 12);
        compare(model.gain, 10);
        // Beyond the end and back: the handle waits for the pointer.
        mouseMove(control, 108 + 5 + 100, 12);
        compare(model.gain, 10);
        mouseMove(control, 108 + 5 + 20, 12);
        compare(model.gain, 2);
        mouseRelease(control, 108 + 5 + 20, 12);
        verify(!control.pressed);
        compare(model.gain, 2);
    }

    function test_press_on_the_track() {
        mouseClick(make(horizontal), 8 + 150, 12);
        compare(model.gain, 5);
        mouseClick(make(vertical), 12, 8 + 50);
        compare(model.gain, 5);
    }

    function test_turn() {
        const control = make(knob);
        mousePress(control, 36, 36);
        mouseMove(control, 36, 36 - 40);
        compare(model.gain, 5); // 160 pixels are the range
        mouseMove(control, 36 + 40, 36 - 40);
        compare(model.gain, 10);
        mouseRelease(control, 36 + 40, 36 - 40);
    }

    function test_double_click_asks_for_the_default_data() {
        return every();
    }
    function test_double_click_asks_for_the_default(data) {
        const control = make(data.component);
        model.gain = 4;
        mouseDoubleClickSequence(control, control.width / 2 + 4, control.height / 2 - 8);
        compare(model.gain, 0);
        // The pointer that still wanders after it changes nothing.
        mousePress(control, control.width / 2, control.height / 2);
        mouseRelease(control, control.width / 2, control.height / 2);
        compare(model.gain, 0);
    }

    function test_a_value_outside_of_the_range_data() {
        // From -20 or 20 in a range of -10 to 10: stays, or goes to the end on its way.
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
            { tag: "assistive technology", value: -20, move: control => Probe.setValue(control, -10), expected: -10 }
        ];
    }
    function test_a_value_outside_of_the_range(data) {
        const control = make(horizontal);
        model.gain = data.value;
        data.move(control);
        compare(model.gain, data.expected);
    }

    function test_the_ends_between_two_steps() {
        const control = make(knob);
        control.from = -3.32;
        control.to = 4.32;
        for (const [key, expected] of [[Qt.Key_End, 4.32], [Qt.Key_Down, 4.2], [Qt.Key_Up, 4.3], [Qt.Key_Up, 4.32], [Qt.Key_Home, -3.32]]) {
            keyClick(key);
            compare(model.gain, expected);
        }
    }

    function test_control_click_asks_for_the_default() {
        const control = make(horizontal);
        model.gain = 4;
        mouseClick(control, 40, 12, Qt.LeftButton, Qt.ControlModifier);
        compare(model.gain, 0);
    }

    function test_wheel_only_with_the_focus() {
        const control = make(knob);
        const turn = delta => mouseWheel(control, 36, 36, 0, delta);
        // Half a notch at a time, as some wheels send it.
        for (const [delta, expected] of [[120, 0.1], [-120, 0], [60, 0], [60, 0.1], [240, 0.3]]) {
            turn(delta);
            compare(model.gain, expected);
        }
        control.focus = false;
        turn(120);
        compare(model.gain, 0.3);
    }

    function test_disabled_takes_nothing() {
        const control = make(horizontal);
        control.enabled = false;
        mouseClick(control, 8 + 150, 12);
        keyClick(Qt.Key_End);
        compare(model.gain, 0);
    }
}
