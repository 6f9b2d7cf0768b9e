pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

// Every key of the window on every kind of control: its effect, and nothing else.
ScreenTest {
    id: testCase
    name: "Keys"

    readonly property int band: 2
    readonly property var sheet: findChild(window, "saveSheet")
    readonly property var none: ({})

    // Keys by name: code, modifiers, and the scan code if only that identifies the key.
    readonly property var keys: ({
            "Return": [Qt.Key_Return], "Enter": [Qt.Key_Enter, Qt.KeypadModifier], "Space": [Qt.Key_Space],
            "Delete": [Qt.Key_Delete], "Backspace": [Qt.Key_Backspace], "Escape": [Qt.Key_Escape],
            "Up": [Qt.Key_Up], "Down": [Qt.Key_Down], "Left": [Qt.Key_Left], "Right": [Qt.Key_Right],
            "Page Up": [Qt.Key_PageUp], "Page Down": [Qt.Key_PageDown], "Home": [Qt.Key_Home], "End": [Qt.Key_End],
            "H": [Qt.Key_H], "B": [Qt.Key_B], "Shift+B": [Qt.Key_B, Qt.ShiftModifier],
            "B in Cyrillic": [0x0418, Qt.NoModifier, 56], "N in Cyrillic": [0x0422, Qt.NoModifier, 57],
            "Ctrl+Z": [Qt.Key_Z, Qt.ControlModifier], "Ctrl+Z in Cyrillic": [0x042F, Qt.ControlModifier, 52],
            "Ctrl+Y": [Qt.Key_Y, Qt.ControlModifier], "F5": [Qt.Key_F5], "Ctrl+Return": [Qt.Key_Return, Qt.ControlModifier],
            "Ctrl+7": [Qt.Key_7, Qt.ControlModifier], "Ctrl+7 in French": [Qt.Key_Egrave, Qt.ControlModifier, 16]
        })
    // Effects of keys that the control does not override.
    readonly property var everywhere: ({
            "B": { compared: true }, "B in Cyrillic": { compared: true }, "F5": { refreshed: true },
            "Ctrl+Z": { global: 0 }, "Ctrl+Z in Cyrillic": { global: 0 }, "Ctrl+Return": { running: false },
            "Ctrl+7": { screen: "presetsAll" }, "Ctrl+7 in French": { screen: "presetsAll" }
        })
    readonly property var inDialog: ({
            "Escape": { dialog: false }, "Ctrl+Z": none, "Ctrl+Z in Cyrillic": none, "F5": none, "Ctrl+Return": none,
            "Ctrl+7": none, "Ctrl+7 in French": none
        })

    function cleanup() {
        closeSheet();
        App.engine.stop();
        undoAll();
        resize(1020, 760);
    }
    function closeSheet() {
        if (sheet.visible) {
            sheet.close();
            tryVerify(() => !sheet.visible);
        }
    }
    function eachOf(names: var, change: var): var {
        const rows = {};
        for (const name of names)
            rows[name] = change;
        return rows;
    }
    function take(name: string, role: string) {
        verify(Assistive.focus(name, role), "no " + role + " " + name);
    }
    function field(): Item {
        const item = window.activeFocusItem;
        return item !== null && item.cursorPosition !== undefined && item.readOnly !== true ? item : null;
    }
    function box(): Item {
        return window.activeFocusItem?.popup !== undefined ? window.activeFocusItem : null;
    }
    /// All facts that a key may change.
    function facts(): var {
        const bands = App.equalizer.bands;
        const [frequency, gain, q] = bandFacts(band);
        return {
            frequency: Math.round(frequency),
            gain: gain,
            q: Math.round(q * 100) / 100,
            type: bands.data(bands.index(band, 0), Qt.UserRole + 4),
            global: App.equalizer.globalGainDB,
            exact: (part("bandPoint0")?.curve.secondaryValues.length ?? 0) > 0,
            preset: App.presets.activeIndex,
            presets: App.presets.count,
            exported: Machine.suggestedName,
            device: App.devices.currentName,
            running: App.engine.running,
            comparing: App.engine.comparing,
            screen: window.destination,
            dialog: sheet.visible,
            open: box()?.popup.visible ?? false,
            highlighted: box()?.highlightedIndex ?? -1,
            text: field()?.text ?? "",
            focus: window.activeFocusItem?.Accessible.name ?? ""
        };
    }
    function changesOf(before: var, after: var, expected: var): var {
        const changes = {};
        for (const fact in after)
            if (after[fact] !== before[fact])
                changes[fact] = after[fact];
        // Compares the new focus only if the row names it.
        for (const fact of ["focus", "text", "highlighted"])
            if (expected[fact] === undefined && (changes.screen !== undefined || changes.dialog !== undefined || changes.open !== undefined || changes.presets !== undefined || changes.focus !== undefined && fact === "text"))
                delete changes[fact];
        return changes;
    }
    function told(changes: var): string {
        return Object.keys(changes).sort().map(fact => fact + " " + changes[fact]).join(", ");
    }
    function prepare(data: var) {
        closeSheet();
        undoAll();
        Machine.suggestedName = "";
        if (!App.engine.running) {
            App.engine.start();
            Machine.advance(0.5);
        }
        App.devices.select("speakers");
        if (part("bandPoint0")?.curve.secondaryValues.length > 0)
            press("Show the exact response", "CheckBox");
        App.equalizer.bands.setGain(band, 3);
        App.equalizer.bands.setQ(band, 2);
        if (data.screen === "presetsMine")
            App.presets.save("Mine alone");
        App.presets.applyRow(0);
        App.equalizer.bands.setGain(band, 3);
        App.equalizer.bands.setQ(band, 2);
        App.equalizer.globalGainDB = 2;
        if (window.destination !== data.screen || data.screen === "presetsMine")
            open(data.screen); // with the current rows
        if (data.screen === "equalizer")
            take("Band 3 gain", "Slider"); // chooses the band
        data.take();
    }

    function test_keys_data() {
        const press = ["Return", "Enter", "Space"];
        const letters = { "H": { text: "h" }, "B": { text: "b" }, "Shift+B": { text: "B" }, "B in Cyrillic": { text: "и" }, "N in Cyrillic": { text: "т" } };
        const away = { focus: "Band 3 gain" };
        const rows = [
            { tag: "nothing", take: () => part("mainView").forceActiveFocus() },
            { tag: "button", take: () => take("Reset all bands", "Button"), expect: eachOf(press, { gain: 0, q: 1 }) },
            { tag: "toggle", take: () => take("Show the exact response", "CheckBox"), expect: eachOf(press, { exact: true }) },
            {
                tag: "closed box",
                take: () => take("Band 3 type", "ComboBox"),
                expect: Object.assign(eachOf(press, { open: true }), { "Down": { type: 1 }, "End": { type: 4 } })
            },
            {
                tag: "open box",
                take: () => {
                    take("Band 3 type", "ComboBox");
                    keyClick(Qt.Key_Space);
                    tryVerify(() => box().popup.opened);
                },
                expect: Object.assign(eachOf([...press, "Escape"], { open: false }), { "Down": { highlighted: 1 },
                        "End": { highlighted: 4 }, "H": { highlighted: 2 } }, eachOf(["Ctrl+7", "Ctrl+7 in French"], { screen: "presetsAll", open: false }))
            },
            {
                tag: "slider",
                take: () => take("Band 3 gain", "Slider"),
                expect: Object.assign(eachOf(["Delete", "Backspace"], { gain: 0 }), { "Up": { gain: 3.1 },
                        "Down": { gain: 2.9 }, "Page Up": { gain: 4 }, "Page Down": { gain: 2 }, "Home": { gain: -12 }, "End": { gain: 12 },
                        "Left": { focus: "Band 2 gain" }, "Right": { focus: "Band 4 gain" } })
            },
            {
                tag: "knob",
                take: () => take("Band 3 Q", "Dial"),
                expect: Object.assign(eachOf(["Delete", "Backspace"], { q: 1 }), eachOf(["Up", "Right"], { q: 2.14 }),
                        eachOf(["Down", "Left"], { q: 1.87 }), { "Page Up": { q: 4 }, "Page Down": { q: 1 }, "Home": { q: 0.1 }, "End": { q: 20 } })
            },
            {
                tag: "curve point",
                take: () => mouseClick(part("bandPoint2")),
                expect: Object.assign(eachOf(["Delete", "Backspace"], { gain: 0, q: 1 }), { "Up": { gain: 3.1 },
                        "Down": { gain: 2.9 }, "Page Up": { gain: 4 }, "Page Down": { gain: 2 }, "Left": { frequency: 117 }, "Right": { frequency: 134 } })
            },
            {
                tag: "field",
                take: () => take("Band 3 gain, typed", "EditableText"),
                expect: Object.assign(eachOf(["Return", "Enter", "Escape"], away), eachOf(["Delete", "Backspace"], { text: "" }),
                        { "Space": { text: " " } }, letters)
            },
            {
                tag: "edited field",
                take: () => {
                    take("Band 3 gain, typed", "EditableText");
                    type("5");
                },
                expect: Object.assign(eachOf(["Return", "Enter"], { gain: 5, focus: "Band 3 gain" }), { "Escape": away,
                        "Backspace": { text: "" }, "Space": { text: "5 " }, "Ctrl+Z": { text: "+3.0" }, "Ctrl+Z in Cyrillic": { text: "+3.0" },
                        "Ctrl+7": { screen: "presetsAll", gain: 5 }, "Ctrl+7 in French": { screen: "presetsAll", gain: 5 } },
                        { "H": { text: "5h" }, "B": { text: "5b" }, "Shift+B": { text: "5B" }, "B in Cyrillic": { text: "5и" }, "N in Cyrillic": { text: "5т" } })
            },
            { tag: "text to read", take: () => take(App.engine.subtitle, "StaticText") },
            {
                tag: "list row",
                screen: "presetsMine",
                take: () => part("presetList").forceActiveFocus(Qt.TabFocusReason),
                expect: Object.assign(eachOf(["Return", "Enter"], { preset: 33 }), { "Delete": { presets: 33 } })
            },
            { tag: "button in a row", screen: "presetsMine", take: () => take("Export preset", "Button"), expect: eachOf(press, { exported: "Mine alone" }) },
            { tag: "sidebar row", take: () => take("Equalizer", "ListItem"), expect: { "Down": { screen: "spatial" } } },
            { tag: "device row", screen: "devices", take: () => take("USB headphones", "RadioButton"), expect: eachOf(press, { device: "USB headphones" }) },
            {
                tag: "button of a dialog",
                take: () => {
                    sheet.open();
                    tryVerify(() => sheet.opened);
                    take("Cancel", "Button");
                },
                expect: Object.assign({}, inDialog, eachOf(press, { dialog: false }))
            },
            {
                tag: "field of a dialog",
                take: () => {
                    sheet.open();
                    tryVerify(() => sheet.opened);
                },
                expect: Object.assign({}, inDialog, eachOf(["Return", "Enter"], { dialog: false, presets: 34, preset: 33 }),
                        eachOf(["Delete", "Backspace"], { text: "" }), { "Space": { text: " " } }, letters)
            }
        ];
        for (const row of rows)
            row.screen = row.screen ?? "equalizer";
        return rows;
    }
    function test_keys(data) {
        for (const name in keys) {
            prepare(data);
            const [key, modifiers, scanCode] = keys[name];
            const expected = data.expect?.[name] ?? everywhere[name] ?? none;
            const before = facts();
            before.compared = before.refreshed = false;
            const reads = Machine.deviceListReads();
            Assistive.sendKey(key, modifiers ?? Qt.NoModifier, scanCode ?? 0, true);
            const compared = App.engine.comparing;
            Assistive.sendKey(key, modifiers ?? Qt.NoModifier, scanCode ?? 0, false);
            if (expected.dialog === false)
                tryVerify(() => !sheet.visible);
            if (expected.open === true)
                tryVerify(() => box().popup.visible);
            const after = facts();
            after.compared = compared;
            after.refreshed = Machine.deviceListReads() > reads;
            compare(told(changesOf(before, after, expected)), told(expected), data.tag + ", " + name);
        }
    }

    function test_shortcuts_to_every_screen_and_redo() {
        const screens = [];
        for (const digit of "1234567890") {
            keyClick(digit, Qt.ControlModifier);
            screens.push(window.destination);
            settle();
        }
        compare(screens, ["equalizer", "spatial", "mixer", "devices", "limiter", "programs", "presetsAll", "presetsFactory", "presetsMine", "setup"]);
        for (const [key, modifiers] of [[Qt.Key_Y, Qt.ControlModifier], [Qt.Key_Z, Qt.ControlModifier | Qt.ShiftModifier]]) {
            App.equalizer.globalGainDB = 2;
            App.history.undo();
            keyClick(key, modifiers);
            compare(App.equalizer.globalGainDB, 2);
            App.history.undo();
        }
    }

    function test_compare_ends_with_what_held_it() {
        App.engine.start();
        Machine.advance(0.5);
        take("Equalizer", "ListItem");
        // The layout changes while the key is held.
        Assistive.sendKey(Qt.Key_B, Qt.NoModifier, 56, true);
        verify(App.engine.comparing);
        Assistive.sendKey(0x0418, Qt.NoModifier, 56, false);
        verify(!App.engine.comparing);
        // A dialog opens while the key is held.
        keyPress(Qt.Key_B);
        sheet.open();
        tryVerify(() => sheet.opened);
        verify(App.engine.comparing);
        keyRelease(Qt.Key_B);
        verify(!App.engine.comparing);
        sheet.close();
        // Processing ends meanwhile; a later start does not begin with a comparison.
        keyPress(Qt.Key_B);
        App.engine.stop();
        verify(!App.engine.comparing);
        keyRelease(Qt.Key_B);
        keyPress(Qt.Key_B);
        App.engine.start();
        Machine.advance(0.5);
        verify(!App.engine.comparing);
        keyRelease(Qt.Key_B);
    }

    function test_a_held_key_acts_once() {
        App.presets.save("One");
        App.presets.save("Two");
        open("presetsMine");
        part("presetList").forceActiveFocus(Qt.TabFocusReason);
        Assistive.sendKey(Qt.Key_Delete, Qt.NoModifier, 0, true);
        compare(App.presets.count, 34);
        settle();
        verify(part("presetList").currentItem !== null);
        Assistive.repeatKey(Qt.Key_Delete);
        compare(App.presets.count, 34);
        Assistive.sendKey(Qt.Key_Delete, Qt.NoModifier, 0, false);
    }

    function test_a_field_gives_the_focus_back() {
        // After keys: to the control that had it before.
        take("Show the exact response", "CheckBox");
        keyClick(Qt.Key_Tab, Qt.ShiftModifier);
        compare(focusedName(), "Global gain, typed");
        keyClick("1");
        keyClick(Qt.Key_Return);
        compare(App.equalizer.globalGainDB, 1);
        compare(focusedName(), "Show the exact response");
        // After a click: to no control, so that a second Return presses no button.
        const gain = Assistive.item("Global gain, typed", "EditableText");
        mouseClick(Assistive.item("Start", "Button"));
        Machine.advance(0.5);
        mouseClick(gain);
        type("2");
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Return);
        compare(App.equalizer.globalGainDB, 2);
        verify(App.engine.running);
        verify(!gain.activeFocus);
        // The selected band is the one of the typed value.
        mouseClick(part("bandPoint1"));
        mouseClick(Assistive.item("Band 7 gain, typed", "EditableText"));
        type("4");
        keyClick(Qt.Key_Return);
        compare(bandFacts(6)[1], 4);
        verify(Assistive.has("Band 7 Q", "Dial"));
        keyPress(Qt.Key_B);
        verify(App.engine.comparing);
        keyRelease(Qt.Key_B);
    }

    function test_a_click_elsewhere_takes_the_focus_from_a_field() {
        const gain = Assistive.item("Global gain, typed", "EditableText");
        mouseClick(gain);
        type("3");
        mouseClick(gain, 5, 5);
        verify(gain.activeFocus);
        mouseClick(part("mainView"), 3, 3);
        verify(!gain.activeFocus);
        compare(App.equalizer.globalGainDB, 3);
        keyClick(Qt.Key_Z, Qt.ControlModifier);
        compare(App.equalizer.globalGainDB, 0);
    }

    /// True if the last part of a page is in view, or the first. For lists a row counts: their content height is an
    /// estimate.
    function showsEnd(view: var, isLast: bool): bool {
        if (view.count === undefined)
            return isLast ? view.atYEnd : view.atYBeginning;
        const row = view.itemAtIndex(isLast ? view.count - 1 : 0);
        return row !== null && row.y >= view.contentY - 1 && row.y + row.height <= view.contentY + view.height + 1;
    }
    function test_keys_scroll_every_page_data() {
        return ["setup", "limiter", "devices", "spatial", "presetsAll"].map(screen => ({ tag: screen }));
    }
    function test_keys_scroll_every_page(data) {
        resize(1020, 400);
        open(data.tag);
        const view = part("presetList") ?? part("screenPage").contentItem;
        take("Start", "Button"); // outside the page
        const page = view.height - 64;
        const last = view.originY + view.contentHeight - view.height;
        verify(last > 0, "nothing to scroll");
        const places = [];
        for (const key of [Qt.Key_Down, Qt.Key_Up, Qt.Key_PageDown, Qt.Key_PageUp]) {
            keyClick(key);
            places.push(Math.round(view.contentY - view.originY));
        }
        const isList = view.count !== undefined; // its origin is an estimate too
        compare(places, [Math.round(Math.min(last, 64)), 0, isList ? places[2] : Math.round(Math.min(last, page)), 0]);
        verify(places[2] > 0);
        keyClick(Qt.Key_End);
        tryVerify(() => showsEnd(view, true));
        keyClick(Qt.Key_Home);
        tryVerify(() => showsEnd(view, false));
        // The same after scrolling by the wheel.
        view.contentY += 100;
        keyClick(Qt.Key_Home);
        tryVerify(() => showsEnd(view, false));
    }

    function test_keys_scroll_the_part_that_has_the_focus() {
        resize(1020, 200);
        open("limiter");
        const inner = part("screenPage").contentItem;
        let outer = part("screenPage").parent;
        while (!(outer.contentHeight > outer.height + 1))
            outer = outer.parent;
        outer.parent.grip.forceActiveFocus();
        keyClick(Qt.Key_PageDown);
        verify(outer.contentY > 0);
        compare(inner.contentY, 0);
        part("screenPage").grip.forceActiveFocus();
        outer.contentY = 0;
        keyClick(Qt.Key_PageDown);
        verify(inner.contentY > 0);
        compare(outer.contentY, 0);
        take("Start", "Button"); // of the toolbar
    }

    function test_the_wheel_is_for_the_control_that_has_the_focus() {
        resize(1020, 440);
        open("limiter");
        const page = part("screenPage").contentItem;
        const slider = part("Master Limiter, Threshold");
        const y = slider.height / 2;
        const inView = Math.round(slider.mapToItem(page.contentItem, 0, y).y - page.height / 2);
        verify(inView > 0 && inView < page.contentHeight - page.height, "does not scroll enough");
        const point = () => {
            page.contentY = inView;
            mouseMove(slider, 40, y);
            mouseMove(slider, 50, y);
        };
        const turn = notches => mouseWheel(slider, 50, y, 0, 120 * notches);
        // Without focus the page scrolls.
        App.setting("limiterThresholdDB").value = -1;
        point();
        turn(1);
        tryVerify(() => page.contentY < inView);
        compare(App.setting("limiterThresholdDB").value, -1);
        // With focus the value changes, not the page, even at the end of the range.
        slider.forceActiveFocus();
        tryCompare(page, "flicking", false);
        point();
        for (const [notches, value] of [[-2, -1.2], [0.5, -1.2], [0.5, -1.1], [20, 0], [1, 0]]) {
            turn(notches);
            fuzzyCompare(App.setting("limiterThresholdDB").value, value, 1e-5);
        }
        compare(page.contentY, inView);
        // While the page scrolls, the wheel stays with it, even if the control comes below the pointer.
        const view = part("screenPage");
        mouseMove(view, 300, 4);
        mouseWheel(view, 300, 4, 0, -120);
        tryVerify(() => page.contentY > inView);
        turn(-1);
        compare(App.setting("limiterThresholdDB").value, 0);
        tryCompare(page, "flicking", false);
        point();
        turn(-1);
        fuzzyCompare(App.setting("limiterThresholdDB").value, -0.1, 1e-5);
        App.setting("limiterThresholdDB").value = -0.3;
    }

    function test_a_drag_of_a_point_keeps_to_its_axis() {
        App.equalizer.bands.setGain(4, -10);
        App.equalizer.globalGainDB = -10; // below the drawn range
        dragPoint(4, 1, 0);
        let [hertz, gain] = bandFacts(4);
        verify(hertz > 500);
        compare(gain, -10);
        dragPoint(4, 60, 7); // the hand strays
        compare(bandFacts(4)[1], -10);
        hertz = bandFacts(4)[0];
        dragPoint(4, 3, -30);
        compare(bandFacts(4)[0], hertz);
        verify(bandFacts(4)[1] > -10);
        // From below the drawn range a drag starts at the value.
        App.equalizer.bands.setGain(4, -10);
        dragPoint(4, 0, -1);
        verify(bandFacts(4)[1] > -10 && bandFacts(4)[1] < -9.5, "gain " + bandFacts(4)[1]);
    }

    function test_the_wheel_on_a_point_turns_q_of_the_one_with_the_focus() {
        const point = part("bandPoint6");
        mouseMove(point, 8, 8);
        mouseWheel(point, 10, 10, 0, 120);
        compare(bandFacts(6)[2], 1);
        mouseClick(point);
        mouseWheel(point, 10, 10, 0, 120);
        fuzzyCompare(bandFacts(6)[2], Math.pow(2, 0.25), 1e-3);
    }
}
