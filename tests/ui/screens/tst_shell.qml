import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Shell"

    SignalSpy {
        id: announcements
        signalName: "announced"
    }
    function listenTo(alert) {
        announcements.target = part(alert);
        announcements.clear();
    }
    /// Announcements since the last call.
    function announced() {
        const texts = announcements.signalArguments.map(sent => sent[0]);
        announcements.clear();
        return texts;
    }

    function test_sidebar_and_toolbar_lead_everywhere() {
        for (const [row, title] of [["Equalizer"], ["Spatial"], ["Mixer"], ["Devices"], ["Limiter & gain"], ["All presets"],
            ["Factory"], ["Mine"], ["Setup guide", "Setup"]]) {
            press(row, "ListItem");
            verify(Assistive.find(row, "ListItem").selected);
            verify(Assistive.has(title ?? row, "Heading"), "no title " + row);
        }
        compare(Assistive.find("Equalizer", "ListItem").description, "10 bands");
        const jumps = { Tuning: "equalizer", Output: "devices", Presets: "presetsAll", Help: "setup" };
        for (const section in jumps) {
            press("Opens the " + section + " section", "Button");
            compare(window.destination, jumps[section]);
        }
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
    }

    function test_start_compare_and_stop() {
        verify(Assistive.has("STOPPED"));
        verify(!Assistive.find("Compare", "Button").enabled);
        press("Start", "Button");
        Machine.advance(0.5);
        compareTexts(["LIVE", "48 kHz · 32 ms · Flat", "Limiter on at -0.3 dBFS"]);
        App.equalizer.bands.setGain(0, 3);
        compare(Assistive.find("Preset", "ComboBox").description, "Custom");
        App.engine.comparing = true;
        verify(Assistive.has("Unprocessed sound"));
        verify(Assistive.find("Compare", "Button").checked);
        verify(part("bandPoint0").curve.dimmed);
        App.engine.comparing = false;
        verify(!Assistive.has("Unprocessed sound"));
        open("setup");
        verify(Assistive.has("Processing is running"));
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
        const text = App.engine.errorMessage;
        verify(text !== "");
        compareTexts(["ERROR", text]);
        compare(announced(), [text + " The last start failed. Press Start to try again."]);
        verify(Assistive.has(text + " The last start failed. Press Start to try again.", "AlertMessage"));
        press("Copy", "Button");
        compare(Machine.clipboard(), text);
        // "Ready to start" below an error says why it is there.
        open("setup");
        compareTexts(["Ready to start", "The last start failed. Press Start to try again."]);
    }

    function test_persist_warning_is_dismissed_or_goes_by_itself() {
        Machine.blockSaving();
        listenTo("noticeAlert");
        Machine.persist();
        const text = App.persistWarning;
        verify(text !== "");
        settle();
        compare(announced(), [text]);
        verify(Assistive.has(text));
        press("Dismiss", "Button");
        verify(!Assistive.has(text));
        Machine.persist();
        settle();
        compare(announced(), [text]); // announces the next failure too
        Machine.allowSaving();
        Machine.persist();
        settle();
        verify(!Assistive.has("Dismiss"));
    }

    // LayoutTest checks that the Tab order ends and shows every stop.
    function test_tab_leads_to_the_controls_data() {
        return Object.entries({
            equalizer: ["Equalizer", "Reset all bands", "Global", "Band 1 gain", "Band 1 frequency", "Band 1 Q", "Band 1 type", "Band 1 bypass"],
            spatial: ["Spatial", "XTC Shuffler", "All controls", "Tone Controls, Bass", "Tone Controls, Treble", "Reset"],
            mixer: ["Mixer", "Saturation", "Saturation, Drive", "Crossfeed, Amount"],
            devices: ["Devices", "Refresh", "USB headphones", "Spectrum analyzer (visual only)"],
            limiter: ["Limiter & gain", "Master Limiter", "Master Limiter, Threshold", "Auto-Gain, Target", "Manual Loudness, Trim"],
            presetsAll: ["All presets", "Import…", "Save current…", "Apply"]
        }).map(([tag, names]) => ({ tag, names }));
    }
    function test_tab_leads_to_the_controls(data) {
        open(data.tag);
        verify(Assistive.focus("Start", "Button"));
        const visited = [];
        do {
            visited.push(focusedName());
            keyClick(Qt.Key_Tab);
        } while (focusedName() !== "Start" && visited.length < 200);
        compare(data.names.filter(name => !visited.includes(name)), []);
    }

    // Runs last, because it removes all devices.
    function test_zz_no_device() {
        Machine.removeAllDevices();
        open("devices");
        compareTexts(["0 found", "No output device found", "No output device"]);
        press("Start", "Button");
        Machine.advance(0.5);
        settle();
        verify(Assistive.has("No output device selected. Choose your speakers as output."));
    }
}
