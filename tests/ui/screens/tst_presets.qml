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
    }

    function test_factory_list() {
        open("presetsFactory");
        compareTexts(["Factory", "33 total", "Import…", "Save current…", "Flat", "General"]);
        verify(!Assistive.has("Delete preset"));
        verify(Assistive.find("Flat", "ListItem").selected);
        verify(Assistive.find("Flat", "ListItem").description.includes("Playing"));
        const list = part("presetList");
        list.positionViewAtEnd();
        settle();
        compare(list.count, 33);
        compare(Assistive.overlaps(), []);
    }

    function test_empty_list() {
        open("presetsMine");
        compareTexts(["Mine", "0 total", "No presets here yet", "Shape the sound, then use Save current… to keep it."]);
    }

    function test_apply_by_keys_and_by_button() {
        open("presetsAll");
        const list = part("presetList");
        list.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(App.presets.activeIndex, 1);
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Tab);
        compare(focusedName(), "Apply");
        keyClick(Qt.Key_Space);
        compare(App.presets.activeIndex, 0);
    }

    function test_save_sheet() {
        open("presetsMine");
        App.equalizer.bands.setGain(3, 2);
        press("Save current…", "Button");
        tryVerify(() => Assistive.has("Save Preset"));
        compare(Assistive.find("Name", "EditableText").text, "My Preset");
        keySequence("Ctrl+A");
        keyClick(" ");
        verify(!Assistive.find("Save", "Button").enabled);
        keyClick(Qt.Key_Return);
        verify(Assistive.has("Save Preset"));
        keyClick("D");
        keyClick("e");
        verify(Assistive.find("Save", "Button").enabled);
        press("Save", "Button");
        tryVerify(() => !Assistive.has("Save Preset"));
        compare(App.presets.activeName, "De");
        verify(Assistive.has("De", "ListItem"));
        verify(Assistive.has("1 total"));
        compare(Assistive.find("Mine", "ListItem").description, "1");
        compare(Assistive.find("All presets", "ListItem").description, "34");
        compare(Assistive.find("Factory", "ListItem").description, "33");

        // The name is the default again, and Cancel and Escape save nothing.
        press("Save current…", "Button");
        tryVerify(() => Assistive.has("Save Preset"));
        compare(Assistive.find("Name", "EditableText").text, "My Preset");
        press("Cancel", "Button");
        tryVerify(() => !Assistive.has("Save Preset"));
        press("Save current…", "Button");
        tryVerify(() => Assistive.has("Save Preset"));
        keyClick(Qt.Key_Escape);
        tryVerify(() => !Assistive.has("Save Preset"));
        compare(App.presets.count, 34);
    }

    function test_delete_the_playing_one_and_take_it_back() {
        App.presets.save("Mine alone");
        open("presetsMine");
        press("Delete preset", "Button");
        compare(App.presets.count, 33);
        compare(App.presets.activeIndex, 0);
        keyClick(Qt.Key_Z, Qt.ControlModifier);
        compare(App.presets.count, 34);
        settle();
        verify(Assistive.has("Mine alone", "ListItem"));
    }

    function test_import_says_what_was_skipped() {
        open("presetsMine");
        Machine.chosenFile = Machine.writeFile("Phones.txt", "Preamp: -4 dB\nFilter 1: ON PK Fc 100 Hz Gain 3 dB Q 1\nFilter 2: ON NO Fc 900 Hz\n");
        press("Import…", "Button");
        verify(Assistive.has("Phones", "ListItem"));
        verify(Assistive.names().some(name => name.startsWith("line 3:")), "the skipped line is not shown");
        compare(Assistive.overlaps(), []);
        press("Dismiss", "Button");
        verify(!Assistive.has("Dismiss", "Button"));

        Machine.chosenFile = Machine.writeFile("broken.json", "{");
        press("Import…", "Button");
        verify(Assistive.names("AlertMessage").some(name => name.includes("broken.json")));
        press("Dismiss", "Button");
        compare(App.presets.count, 34);

        Machine.chosenFile = "";
        press("Import…", "Button");
        verify(!Assistive.has("Dismiss", "Button"), "cancelled, and still something was said");
        compare(App.presets.count, 34);
    }

    function test_export_and_import_again() {
        App.presets.save("Desk / 1");
        open("presetsMine");
        Machine.chosenFile = Machine.filePath("desk.json");
        press("Export preset", "Button");
        compare(Machine.suggestedName, "Desk - 1");
        verify(Machine.fileExists(Machine.chosenFile));
        press("Import…", "Button");
        compare(App.presets.count, 35);
    }
}
