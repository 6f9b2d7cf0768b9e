import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Presets"

    function removeOwn() {
        for (let row = App.presets.count - 1; row >= 33; --row)
            App.presets.remove(App.presets.data(App.presets.index(row, 0), Qt.UserRole));
    }
    function cleanup() {
        App.presets.applyRow(0);
        removeOwn();
        for (let row = 0; row < 33; ++row)
            App.presets.setFavourite(App.presets.data(App.presets.index(row, 0), Qt.UserRole), false);
    }
    function tabTo(name) {
        for (let steps = 0; focusedName() !== name; ++steps) {
            verify(steps < 40, "Tab does not lead to " + name);
            keyClick(Qt.Key_Tab);
        }
    }
    function details(role) {
        return Assistive.all().filter(entry => entry.role === role).map(entry => entry.name);
    }

    function test_lists() {
        open("presetsMine");
        compareTexts(["0 total", "No presets here yet"]);
        open("presetsFactory");
        compareTexts(["33 total", "Flat", "General"]);
        verify(!Assistive.has("Delete preset"));
        verify(Assistive.find("Flat", "ListItem").selected);
        verify(Assistive.find("Flat", "ListItem").description.includes("Playing"));
        part("presetList").positionViewAtEnd();
        settle();
        compare(part("presetList").count, 33);
    }

    function test_everything_by_the_keyboard_alone() {
        App.equalizer.bands.setGain(3, 2);
        open("presetsAll");
        keySequence("Ctrl+F");
        compare(focusedName(), "Search presets");
        type("late NIGHT");
        settle();
        verify(Assistive.has("1 found"));
        compare(Assistive.find("Search presets").description, "1 found");
        compare(part("presetList").count, 1);
        verify(Assistive.has("33 total"));

        // A favourite comes first in the toolbar's box.
        keyClick(Qt.Key_Down);
        tabTo("Favourite");
        keyClick(Qt.Key_Space);
        verify(Assistive.find("MR5 Desk — Late Night", "ListItem").description.includes("Favourite"));
        verify(Assistive.find("Favourite", "Button").checked || Assistive.find("Favourite", "CheckBox").checked);
        compare(App.presets.choices.data(App.presets.choices.index(0, 0), Qt.UserRole + 1), "MR5 Desk — Late Night");

        // Duplicates it, renames the copy and overwrites its settings.
        tabTo("More");
        keyClick(Qt.Key_Space);
        tryVerify(() => Assistive.has("Duplicate", "MenuItem"));
        verify(!Assistive.find("Rename…", "MenuItem").enabled);
        keyClick(Qt.Key_Return);
        tryVerify(() => !Assistive.has("Duplicate", "MenuItem"));
        compare(App.presets.count, 34);
        compare(focusedName(), "MR5 Desk — Late Night (copy)");
        keyClick(Qt.Key_F2);
        tryVerify(() => Assistive.has("Rename Preset"));
        compare(Assistive.find("Name", "EditableText").text, "MR5 Desk — Late Night (copy)");
        type("Night");
        keyClick(Qt.Key_Return);
        tryVerify(() => !Assistive.has("Rename Preset"));
        verify(Assistive.has("Night", "ListItem"), "the search has found its description");
        compare(focusedName(), "Night");
        keyClick(Qt.Key_Menu);
        tryVerify(() => Assistive.has("Rename…", "MenuItem"));
        verify(Assistive.find("Rename…", "MenuItem").enabled);
        keyClick(Qt.Key_Return);
        tryVerify(() => !Assistive.has("Rename…", "MenuItem"));
        compare(App.presets.activeName, "Night");
        verify(details("AlertMessage").includes("Night has the current settings now."));
        press("Dismiss", "Button");
        keySequence("Ctrl+Z");
        compare(App.presets.activeName, "Custom");

        // Exports it, then imports it together with another file.
        Machine.chosenFile = Machine.filePath("Evening.json");
        tabTo("Export current…");
        keyClick(Qt.Key_Space);
        compare(Machine.suggestedName, "Custom");
        verify(Machine.fileExists(Machine.chosenFile));
        Machine.chosenFile += "\n" + Machine.writeFile("More.txt", "Filter 1: ON PK Fc 100 Hz Gain 3 dB Q 1\n");
        for (let steps = 0; focusedName() !== "Import…"; ++steps) {
            verify(steps < 5);
            keyClick(Qt.Key_Tab, Qt.ShiftModifier);
        }
        keyClick(Qt.Key_Space);
        verify(details("AlertMessage").includes("2 presets were imported."));
        keySequence("Ctrl+F");
        keyClick(Qt.Key_Escape);
        open("presetsMine");
        for (const name of ["Night", "Evening", "More"])
            verify(Assistive.has(name, "ListItem"), name);
    }

    function test_a_copy_of_a_factory_preset_is_told_of_where_the_list_does_not_show_it() {
        open("presetsFactory");
        part("presetList").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_F10, Qt.ShiftModifier);
        tryVerify(() => Assistive.has("Duplicate", "MenuItem"));
        keyClick(Qt.Key_Return);
        tryVerify(() => details("AlertMessage").includes("The copy is in the list Mine."));
        tryVerify(() => focusedName() === "Flat", 1000, "the list has the keyboard again");
    }

    function test_the_box_has_groups_and_ticks_nothing_for_custom() {
        App.presets.save("Mine alone");
        App.presets.setFavourite(App.presets.data(App.presets.index(12, 0), Qt.UserRole), true);
        App.equalizer.bands.setGain(3, 2);
        press("Preset", "ComboBox");
        tryVerify(() => Assistive.has("Favourites", "StaticText"));
        compareTexts(["Favourites", "Mine", "General", "Edifier MR5"]);
        const entries = Assistive.all().filter(entry => entry.role === "ListItem");
        verify(!entries.some(entry => entry.selected && entry.name === "Mine alone"));
        press("Bass Warm Body", "ListItem");
        tryCompare(App.presets, "activeName", "Bass Warm Body");
        press("Preset", "ComboBox");
        tryVerify(() => Assistive.find("Bass Warm Body", "ListItem").selected);
        keyClick(Qt.Key_Escape);
    }

    function test_files_are_dropped_on_any_screen() {
        open("mixer");
        const good = Machine.writeFile("Dropped.txt", "Preamp: -3 dB\nFilter 1: ON PK Fc 100 Hz Gain 3 dB Q 1\n");
        verify(Assistive.drop([good, Machine.writeFile("broken.json", "{")]));
        settle();
        compare(window.destination, "presetsMine");
        verify(Assistive.has("Dropped", "ListItem"));
        verify(details("AlertMessage").includes("1 of 2 files were imported."));
        verify(Assistive.names().some(name => name.startsWith("broken.json:")), "why one was refused");
    }

    function test_names_are_plain_text() {
        const name = "<b>Bold</b> / <i>x";
        App.presets.save(name);
        Machine.addDevice("markup", "<u>USB</u>");
        App.devices.refresh();
        Machine.advance(0.5);
        for (const screen of ["presetsMine", "devices", "equalizer"]) {
            open(screen);
            compare(Assistive.textsReadAsMarkup(), []);
        }
        for (const box of ["Preset", "Output"]) {
            press(box, "ComboBox");
            tryVerify(() => Assistive.has(box === "Preset" ? name : "<u>USB</u>", "ListItem"));
            compare(Assistive.textsReadAsMarkup(), []);
            keyClick(Qt.Key_Escape);
        }
        open("presetsMine");
        Machine.chosenFile = Machine.filePath("x.json");
        press("Export preset", "Button");
        compare(Machine.suggestedName, "-b-Bold--b- - -i-x");
        verify(details("AlertMessage").includes(name + " was written to x.json"));
        mouseMove(findChild(window.contentItem, "undoButton"));
        tryVerify(() => Assistive.names().some(text => text.includes("Save preset " + name)));
        compare(Assistive.textsReadAsMarkup(), []);
        press("Dismiss", "Button");
        part("presetList").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_F2);
        tryVerify(() => Assistive.has("Rename Preset"));
        compare(Assistive.textsReadAsMarkup(), []);
        keyClick(Qt.Key_Escape);
        Machine.removeDevice("markup");
    }

    function test_save_sheet_and_delete() {
        open("presetsMine");
        App.equalizer.bands.setGain(3, 2);
        const leave = [() => keyClick(Qt.Key_Escape), () => press("Cancel", "Button"), () => press("Save", "Button")];
        for (const end of leave) {
            press("Save current…", "Button");
            tryVerify(() => Assistive.has("Save Preset"));
            compare(Assistive.find("Name", "EditableText").text, "My Preset");
            keySequence("Ctrl+A");
            keyClick(" ");
            verify(!Assistive.find("Save", "Button").enabled);
            keyClick(Qt.Key_Return);
            verify(Assistive.has("Save Preset"));
            type("De");
            compare(App.presets.count, 33);
            end();
            tryVerify(() => !Assistive.has("Save Preset"));
        }
        compare(App.presets.activeName, "De");
        verify(Assistive.has("De", "ListItem"));
        compare(Assistive.find("Mine", "ListItem").description, "1");
        press("Delete preset", "Button");
        compare([App.presets.count, App.presets.activeIndex], [33, 0]);
        keyClick(Qt.Key_Z, Qt.ControlModifier);
        settle();
        verify(Assistive.has("De", "ListItem"));
    }
}
