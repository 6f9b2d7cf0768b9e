import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Effects"

    function openCards() {
        open("spatial");
        while (Assistive.has("All controls", "Button"))
            press("All controls", "Button");
    }

    function test_stage_cards_in_order() {
        open("spatial");
        const names = Assistive.names("CheckBox").filter(name => !name.startsWith("Adaptive"));
        compare(names, ["XTC Shuffler", "Stereo Widening", "Reverb", "Voice Clarity", "Deep Bass"]);
        for (const name of names)
            verify(Assistive.find(name, "CheckBox").description.length > 40, "no help: " + name);
        compareTexts(["XTC Shuffler: 50", "Stereo Widening: 100", "Reverb: 15% wet", "Voice Clarity: 100", "Deep Bass: 50"]);
        openCards();
        compareTexts(["Mid-range content 0%", "Tracking " + App.engine.trackingText]);
        compare(Assistive.find("Reverb, Preset", "ComboBox").description, App.settings.reverbPresetTitles[0]);
        verify(Assistive.focus("Reverb, Preset", "ComboBox"));
        keyClick(Qt.Key_Down);
        compare(App.setting("reverbPreset").value, 1);
        open("mixer");
        open("spatial");
        verify(!Assistive.has("All controls", "Button"));
        while (Assistive.has("Hide", "Button"))
            press("Hide", "Button");
        compare(Assistive.names("Slider"), []);
    }

    function show(screen) {
        if (screen === "spatial")
            openCards();
        else
            open(screen);
    }
    function test_every_control_writes_its_field_within_its_range_data() {
        return [
            ["XTC Shuffler, XTC Amount", "spatial", "xtcAmount", 0, 100],
            ["XTC Shuffler, Head-width Notch", "spatial", "xtcNotchFrequency", 500, 8000],
            ["Stereo Widening, Width", "spatial", "widthPercent", 0, 200],
            ["Reverb, Wet Mix", "spatial", "reverbMix", 0, 60],
            ["Voice Clarity, Amount", "spatial", "voiceAmount", 0, 100],
            ["Voice Clarity, Presence @ 3 kHz", "spatial", "voicePresenceGainDB", 0, 6],
            ["Voice Clarity, Mud cut @ 300 Hz", "spatial", "voiceMudCutDB", 0, 4],
            ["Deep Bass, Amount", "spatial", "bassAmount", 0, 100],
            ["Deep Bass, Drive", "spatial", "bassDrive", 1, 8],
            ["Deep Bass, Crossover", "spatial", "bassCrossover", 40, 150],
            ["Tone Controls, Bass", "spatial", "toneBassDB", -12, 12],
            ["Tone Controls, Mid", "spatial", "toneMidDB", -12, 12],
            ["Tone Controls, Treble", "spatial", "toneTrebleDB", -12, 12],
            ["Saturation, Drive", "mixer", "saturationDrive", 0, 100],
            ["Crossfeed, Amount", "mixer", "crossfeedAmount", 0, 100],
            ["Master Limiter, Threshold", "limiter", "limiterThresholdDB", -12, 0],
            ["Auto-Gain, Target", "limiter", "autoGainTargetDB", -30, -6],
            ["Manual Loudness, Trim", "limiter", "manualLoudnessDB", -12, 12]
        ].map(([label, screen, field, from, to]) => ({ tag: label, screen, field, from, to }));
    }
    function test_every_control_writes_its_field_within_its_range(data) {
        show(data.screen);
        const setting = App.setting(data.field);
        const control = Assistive.has(data.tag, "Dial") ? Assistive.find(data.tag, "Dial") : Assistive.find(data.tag, "Slider");
        compare(control.from, data.from);
        compare(control.to, data.to);
        compare(control.value, setting.value);
        setValue(data.tag, data.to);
        compare(setting.value, data.to);
        setValue(data.tag, data.from);
        compare(setting.value, data.from);
        App.history.undo();
    }

    function test_switches_data() {
        return [
            ["XTC Shuffler", "spatial", "xtcEnabled"], ["Stereo Widening", "spatial", "widenerEnabled"],
            ["Reverb", "spatial", "reverbEnabled"], ["Voice Clarity", "spatial", "voiceEnabled"],
            ["Deep Bass", "spatial", "bassEnabled"],
            ["Adaptive scaling (experimental)", "spatial", "voiceAdaptiveEnabled"],
            ["Adaptive — track song’s bass fundamental", "spatial", "bassAdaptiveEnabled"],
            ["Saturation", "mixer", "saturationEnabled"], ["Crossfeed", "mixer", "crossfeedEnabled"],
            ["Master Limiter", "limiter", "limiterEnabled"], ["Auto-Gain", "limiter", "autoGainEnabled"],
            ["Manual Loudness", "limiter", "manualLoudnessEnabled"],
            ["Spectrum analyzer (visual only)", "devices", "spectrumEnabled"]
        ].map(([label, screen, field]) => ({ tag: label, screen, field }));
    }
    function test_switches(data) {
        show(data.screen);
        const setting = App.setting(data.field);
        const before = setting.on;
        compare(Assistive.find(data.tag, "CheckBox").checked, before);
        press(data.tag, "CheckBox");
        compare(setting.on, !before);
        compare(Assistive.find(data.tag, "CheckBox").checked, !before);
        verify(Assistive.focus(data.tag, "CheckBox"));
        keyClick(Qt.Key_Space);
        compare(setting.on, before);
    }

    function test_tone_reset() {
        open("spatial");
        App.setting("toneBassDB").value = 3;
        settle();
        verify(Assistive.has("Bass +3.0 dB"));
        press("Reset", "Button");
        compare(App.setting("toneBassDB").value, 0);
    }

    function test_a_drag_is_one_step_of_history() {
        open("mixer");
        const slider = part("Saturation, Drive");
        verify(slider !== null);
        mousePress(slider, 30, slider.height / 2);
        for (let x = 30; x < 200; x += 10) {
            mouseMove(slider, x, slider.height / 2);
            Machine.advance(1); // too slow for a burst
        }
        mouseRelease(slider, 200, slider.height / 2);
        verify(App.setting("saturationDrive").value !== 30);
        App.history.undo();
        compare(App.setting("saturationDrive").value, 30);
        verify(!App.history.canUndo);
    }
}
