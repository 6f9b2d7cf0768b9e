import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Shell"

    readonly property var destinations: ["equalizer", "spatial", "mixer", "devices", "limiter",
        "presetsAll", "presetsFactory", "presetsMine", "setup"]

    SignalSpy {
        id: announcements
        signalName: "announced"
    }
    function listenTo(alert) {
        announcements.target = part(alert);
        announcements.clear();
    }
    /// What was announced since the last call.
    function announced() {
        const texts = announcements.signalArguments.map(sent => sent[0]);
        announcements.clear();
        return texts;
    }

    function test_window() {
        compare(window.title, "Ostrafine");
        compare(window.minimumWidth, 1020);
        compare(window.minimumHeight, 760);
        compare(window.destination, "equalizer");
    }

    function test_sidebar_leads_everywhere_and_tells_how_much_there_is() {
        const rows = [["Equalizer", "10 bands", "Equalizer"], ["Spatial", "0 on", "Spatial"],
            ["Mixer", "0 on", "Mixer"], ["Devices", "2 found", "Devices"],
            ["Limiter & gain", "on", "Limiter & gain"], ["All presets", "33", "All presets"],
            ["Factory", "33", "Factory"], ["Mine", "0", "Mine"], ["Setup guide", "", "Setup"]];
        for (const [row, badge, title] of rows) {
            compare(Assistive.find(row, "ListItem").description, badge);
            press(row, "ListItem");
            verify(Assistive.find(row, "ListItem").selected);
            verify(Assistive.has(title, "Heading"), "no title " + title);
        }
        for (const group of ["Tuning", "Output", "Presets", "Help"])
            verify(Assistive.has(group, "Heading"));
    }

    function test_about_names_the_version_and_copies_it() {
        press("About Ostrafine", "Button");
        tryVerify(() => Assistive.has("Version " + App.about.version));
        compare(focusedName(), "Copy for a bug report");
        keyClick(Qt.Key_Space);
        compare(Machine.clipboard(), App.about.report);
        verify(/^Ostrafine \d+\.\d+\.\d+\nQt 6\./.test(Machine.clipboard()), Machine.clipboard());
        keyClick(Qt.Key_Escape);
        tryVerify(() => !Assistive.has("Version " + App.about.version));
        compare(window.destination, "equalizer");
    }

    function test_toolbar_jumps_to_sections() {
        const jumps = { Tuning: "equalizer", Output: "devices", Presets: "presetsAll", Help: "setup" };
        for (const section in jumps) {
            press("Opens the " + section + " section", "Button");
            compare(window.destination, jumps[section]);
        }
    }

    function test_start_and_stop() {
        compare(Assistive.find("Start", "Button").description, "Start processing");
        verify(Assistive.has("STOPPED"));
        verify(!Assistive.find("Compare", "Button").enabled);
        press("Start", "Button");
        Machine.advance(0.5);
        compare(Assistive.find("Stop", "Button").description, "Stop processing");
        verify(Assistive.has("LIVE"));
        verify(Assistive.has("48 kHz · 32 ms · Flat"));
        verify(Assistive.has("Limiter on at -0.3 dBFS"));
        press("Stop", "Button");
        verify(Assistive.has("STOPPED"));
    }

    function test_failed_start_shows_its_text_and_copies_it() {
        Machine.failCapture();
        listenTo("errorAlert");
        press("Start", "Button");
        Machine.advance(0.5);
        Machine.repairCapture();
        settle();
        verify(Assistive.has("ERROR"));
        const text = App.engine.errorMessage;
        verify(text !== "");
        verify(Assistive.has(text));
        compare(announced(), [text + " The last start failed. Press Start to try again."]);
        verify(Assistive.has(text + " The last start failed. Press Start to try again.", "AlertMessage"));
        press("Copy", "Button");
        compare(Machine.clipboard(), text);
        // "Ready to start" below an error says why it is there.
        open("setup");
        compareTexts(["Ready to start", "The last start failed. Press Start to try again."]);
    }

    function test_pickers() {
        compare(Assistive.find("Output", "ComboBox").description, "Studio monitors");
        compare(Assistive.find("Preset", "ComboBox").description, "Flat");
        App.equalizer.bands.setGain(0, 3);
        compare(Assistive.find("Preset", "ComboBox").description, "Custom");
        verify(Assistive.focus("Preset", "ComboBox"));
        keyClick(Qt.Key_Down);
        tryVerify(() => App.presets.activeName !== "Custom" && App.presets.activeName !== "Flat");
    }

    function test_compare_is_shown() {
        App.engine.start();
        Machine.advance(0.5);
        App.engine.comparing = true;
        verify(Assistive.has("Unprocessed sound"));
        verify(Assistive.find("Compare", "Button").checked);
        verify(part("bandPoint0").curve.dimmed);
        App.engine.comparing = false;
        verify(!Assistive.has("Unprocessed sound"));
    }

    function test_persist_warning_is_dismissed_or_goes_by_itself() {
        Machine.blockSaving();
        listenTo("noticeAlert");
        Machine.persist();
        const text = App.persistWarning;
        verify(text !== "");
        settle();
        compare(announced(), [text]);
        settle();
        verify(Assistive.has(text));
        press("Dismiss", "Button");
        verify(!Assistive.has(text));
        Machine.persist();
        settle();
        verify(Assistive.has(text)); // the next failure is told like the first
        compare(announced(), [text]);
        Machine.allowSaving();
        Machine.persist();
        settle();
        compare(App.persistWarning, "");
        verify(!Assistive.has("Dismiss"));
    }

    function test_tab_goes_through_everything_and_comes_back_data() {
        return destinations.map(destination => ({ tag: destination }));
    }
    function test_tab_goes_through_everything_and_comes_back(data) {
        open(data.tag);
        verify(Assistive.focus("Start", "Button"));
        const visited = [];
        const bound = 200;
        do {
            const name = focusedName();
            verify(name !== undefined && name !== "", "focus on something without a name after " + visited[visited.length - 1]);
            visited.push(name);
            keyClick(Qt.Key_Tab);
        } while (focusedName() !== "Start" && visited.length < bound);
        verify(visited.length < bound, "the way of the Tab key does not end: " + visited.slice(0, 30).join(", "));
        const needed = { equalizer: ["Reset all bands", "Global", "Band 1 gain", "Band 1 frequency", "Band 1 Q", "Band 1 type", "Band 1 bypass"],
            spatial: ["XTC Shuffler", "All controls", "Tone Controls, Bass", "Tone Controls, Treble", "Reset"],
            mixer: ["Saturation", "Saturation, Drive", "Crossfeed, Amount"],
            devices: ["Refresh", "USB headphones", "Spectrum analyzer (visual only)"],
            limiter: ["Master Limiter", "Master Limiter, Threshold", "Auto-Gain, Target", "Manual Loudness, Trim"],
            presetsAll: ["Import…", "Save current…", "Apply"], presetsFactory: ["Apply"] }[data.tag] ?? [];
        for (const name of needed)
            verify(visited.includes(name), "not on the way: " + name + " (" + visited.join(", ") + ")");
    }
}
