pragma ComponentBehavior: Bound

import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Probe

// Buttons, switches, choices and fields.
ControlCase {
    id: root

    name: "buttons"

    QtObject {
        id: kept

        property bool on: false
        property int choice: 0
        property int clicks: 0
        property string accepted: ""
    }

    Component {
        id: toggle

        DotToggle {
            text: "Adaptive"
            checked: kept.on
            onToggled: kept.on = checked
        }
    }
    Component {
        id: button

        DotButton {
            text: "Start"
            accessibleName: "Start processing"
            symbol: "play.fill"
            onClicked: ++kept.clicks
        }
    }
    Component {
        id: iconButton

        DotIconButton {
            symbol: "trash"
            accessibleName: "Delete preset"
            onClicked: ++kept.clicks
        }
    }
    Component {
        id: choices

        DotComboBox {
            width: 240
            title: "Output"
            model: ["One", "Two", "Three"]
            currentIndex: kept.choice
            onActivated: index => kept.choice = index
        }
    }
    Component {
        id: roleChoices

        DotComboBox {
            width: 240
            accessibleName: "Preset"
            textRole: "name"
            model: ListModel {
                ListElement {
                    name: "Flat"
                }
                ListElement {
                    name: "Bass"
                }
            }
            currentIndex: kept.choice
            onActivated: index => kept.choice = index
        }
    }
    Component {
        id: field

        DotTextField {
            placeholder: "Name"
            onAccepted: kept.accepted = text
        }
    }

    function make(component: Component): Item {
        kept.on = false;
        kept.choice = 0;
        kept.clicks = 0;
        const control = createTemporaryObject(component, root) as Item;
        control.forceActiveFocus(Qt.TabFocusReason);
        verify(control.activeFocus);
        return control;
    }

    function test_toggle() {
        const control = make(toggle) as DotToggle;
        compare(Probe.role(control), Accessible.CheckBox);
        compare(Probe.name(control), "Adaptive");
        keyClick(Qt.Key_Space);
        verify(kept.on);
        verify(Probe.checked(control));
        mouseClick(control);
        verify(!kept.on);
        Probe.act(control, "Toggle");
        verify(kept.on);
        kept.on = false;
        verify(!control.checked);
    }

    function test_button_data() {
        return [
            {
                tag: "text",
                component: button,
                name: "Start processing"
            },
            {
                tag: "symbol",
                component: iconButton,
                name: "Delete preset"
            }
        ];
    }
    function test_button(data) {
        const control = make(data.component);
        compare(Probe.role(control), Accessible.Button);
        compare(Probe.name(control), data.name);
        keyClick(Qt.Key_Space);
        mouseClick(control);
        Probe.act(control, "Press");
        compare(kept.clicks, 3);
        control.enabled = false;
        mouseClick(control);
        compare(kept.clicks, 3);
    }

    function test_a_symbol_tells_its_name() {
        const control = make(iconButton) as DotIconButton;
        mouseMove(control, 5, 5);
        mouseMove(control, 10, 10);
        verify(control.hovered);
        const tip = findChild(control, "toolTip");
        tryVerify(() => tip.opened);
        compare(tip.text, "Delete preset");
        mouseMove(root, 600, 400);
        tryVerify(() => !tip.visible);
    }

    function test_choices_data() {
        return [
            {
                tag: "list",
                component: choices,
                name: "Output",
                second: "Two"
            },
            {
                tag: "roles",
                component: roleChoices,
                name: "Preset",
                second: "Bass"
            }
        ];
    }
    function test_choices(data) {
        const control = make(data.component) as DotComboBox;
        compare(Probe.role(control), Accessible.ComboBox);
        compare(Probe.name(control), data.name);
        keyClick(Qt.Key_Down);
        compare(kept.choice, 1);
        compare(control.displayText, data.second);
        kept.choice = 0;
        compare(control.currentIndex, 0);

        keyClick(Qt.Key_Space);
        tryVerify(() => control.popup.opened);
        const line = control.popup.contentItem.itemAtIndex(1);
        compare(line.text, data.second);
        compare(Probe.name(line), data.second);
        compare(Probe.role(line), Accessible.ListItem);
        mouseClick(line);
        tryVerify(() => !control.popup.visible);
        compare(kept.choice, 1);
        kept.choice = 0;
        compare(control.currentIndex, 0);

        Probe.act(control, "Press");
        tryVerify(() => control.popup.opened);
        compare(Probe.description(control), control.displayText);
        Probe.act(control.popup.contentItem.itemAtIndex(1), "Press");
        tryVerify(() => !control.popup.visible);
        compare(kept.choice, 1);
    }

    function test_field() {
        const control = make(field) as DotTextField;
        compare(Probe.role(control), Accessible.EditableText);
        compare(Probe.name(control), "Name");
        keyClick("8");
        keyClick("k");
        keyClick(Qt.Key_Return);
        compare(kept.accepted, "8k");
    }

    function test_focus_goes_by_tab_and_shows() {
        const first = make(button) as DotButton;
        const second = createTemporaryObject(toggle, root, {
            y: 60
        }) as DotToggle;
        const third = createTemporaryObject(slider, root, {
            y: 120
        }) as DotSlider;
        verify(first.visualFocus);
        keyClick(Qt.Key_Tab);
        verify(second.visualFocus);
        keyClick(Qt.Key_Tab);
        verify(third.visualFocus);
        keyClick(Qt.Key_Backtab);
        verify(second.visualFocus);
        // Taken by the pointer, focus needs no ring.
        mouseClick(third, 20, 12);
        verify(third.activeFocus);
        verify(!third.visualFocus);
    }

    Component {
        id: slider

        DotSlider {}
    }
}
