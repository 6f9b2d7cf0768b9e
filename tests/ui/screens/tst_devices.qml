import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Devices"

    function test_choose_a_device() {
        open("devices");
        compareTexts(["Devices", "2 found", "Spectrum analyzer (visual only)", "0 drivers",
            "Drives the graphic in the panel above. Visual only — it does not touch the sound.",
            "Quit the app and macOS sound returns by itself."]);
        compare(Assistive.find("Refresh", "Button").description, "Refresh device list");
        compare(Assistive.find("Studio monitors", "RadioButton").description, "In use, System default");
        press("USB headphones", "RadioButton");
        compare(App.devices.currentName, "USB headphones");
        compare(Assistive.find("USB headphones", "RadioButton").description, "In use");
        verify(!Assistive.find("Studio monitors", "RadioButton").checked);
        verify(Assistive.focus("Studio monitors", "RadioButton"));
        keyClick(Qt.Key_Space);
        compare(App.devices.currentName, "Studio monitors");
    }

    function test_refresh_finds_a_new_device() {
        open("devices");
        Machine.addDevice("hdmi", "Television");
        press("Refresh", "Button");
        Machine.advance(0.5);
        settle();
        verify(Assistive.has("3 found"));
        verify(Assistive.has("Television", "RadioButton"));
        Machine.removeDevice("hdmi");
        press("Refresh", "Button");
        Machine.advance(0.5);
        verify(Assistive.has("2 found"));
    }

    function test_spectrum_switch_darkens_the_panel() {
        open("devices");
        Machine.playMusic();
        App.engine.start();
        Machine.advance(0.5);
        verify(App.spectrum.active);
        press("Spectrum analyzer (visual only)", "CheckBox");
        verify(!App.spectrum.active);
        verify(App.engine.running);
    }

    function test_setup_guide() {
        open("setup");
        for (const step of ["1. Pick your output device", "3. Play something"])
            verify(Assistive.has(step, "Heading"));
        compareTexts(["Setup", "4 steps", "1. Pick your output device",
            "2. Click Start and approve the one-time permission", "3. Play something",
            "4. Edifier MR5 tips (optional)", "LED color: red = Monitor mode (short-press the volume knob)",
            "Ready to start", "Click Start in the toolbar to begin system-wide processing. No driver or manual routing needed."]);
        App.engine.start();
        Machine.advance(0.5);
        compareTexts(["Processing is running", "System audio is being captured and processed live."]);
    }

    // Last: it leaves no device.
    function test_zz_no_device() {
        Machine.removeAllDevices();
        open("devices");
        compareTexts(["0 found", "No output device found", "Connect speakers or headphones, then press Refresh."]);
        verify(Assistive.has("No output device"));
        press("Start", "Button");
        Machine.advance(0.5);
        settle();
        verify(Assistive.has("No output device selected. Choose your speakers as output."));
    }
}
