import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Equalizer"

    function pointAt(row) {
        return part("bandPoint" + row);
    }
    function dragPoint(row, dx, dy) {
        const point = pointAt(row), plot = point.curve;
        const x = point.x + point.width / 2, y = point.y + point.height / 2;
        mousePress(plot, x, y);
        for (let step = 1; step <= 8; ++step)
            mouseMove(plot, x + dx * step / 8, y + dy * step / 8);
        mouseRelease(plot, x + dx, y + dy);
    }

    function test_typed_values_data() {
        return [
            { tag: "frequency", field: "Band 3 frequency", typed: "8k", role: "frequency", value: 8000, shown: "8k" },
            { tag: "gain", field: "Band 3 gain, typed", typed: "-3 dB", role: "gain", value: -3, shown: "-3.0" },
            { tag: "q", field: "Band 3 Q, typed", typed: ".7", role: "q", value: 0.7, shown: "0.70" },
            { tag: "beyond the range", field: "Band 3 gain, typed", typed: "40", role: "gain", value: 12, shown: "+12.0" },
            { tag: "no number", field: "Band 3 gain, typed", typed: "loud", role: "gain", value: 0, shown: "+0.0" }
        ];
    }
    function test_typed_values(data) {
        verify(Assistive.focus("Band 3 gain", "Slider")); // chooses the band
        verify(Assistive.focus(data.field, "EditableText"));
        keySequence("Ctrl+A");
        for (const letter of data.typed)
            keyClick(letter);
        keyClick(Qt.Key_Return);
        const row = App.equalizer.bands.index(2, 0);
        const roles = { frequency: 1, gain: 2, q: 3 };
        fuzzyCompare(App.equalizer.bands.data(row, Qt.UserRole + roles[data.role]), data.value, 1e-4);
        compare(Assistive.find(data.field, "EditableText").text, data.shown);
    }

    function test_dragging_a_point_is_one_step() {
        const point = pointAt(5);
        dragPoint(5, 80, -40);
        const bands = App.equalizer.bands, row = bands.index(5, 0);
        const hertz = bands.data(row, Qt.UserRole + 1), gain = bands.data(row, Qt.UserRole + 2);
        verify(hertz > 1100 && hertz < 8000, "frequency " + hertz);
        verify(gain > 1 && gain <= 12, "gain " + gain);
        fuzzyCompare(gain, Math.round(gain * 10) / 10, 1e-4);
        fuzzyCompare(point.x + point.width / 2, point.curve.xOfFrequency(hertz), 0.5); // where the band is
        App.history.undo();
        compare([bands.data(row, Qt.UserRole + 1), bands.data(row, Qt.UserRole + 2)], [1000, 0]);
        verify(!App.history.canUndo);
    }

    function test_double_click_resets() {
        const bands = App.equalizer.bands;
        const row = bands.index(2, 0);
        bands.setGain(2, 6);
        bands.setFrequency(2, 200);
        // On the slider its gain, on the point the band.
        mouseDoubleClickSequence(Assistive.item("Band 3 gain", "Slider"));
        compare(bands.data(row, Qt.UserRole + 2), 0);
        compare(bands.data(row, Qt.UserRole + 1), 200);
        bands.setGain(2, 6);
        mouseDoubleClickSequence(Assistive.item("Band 3 gain, typed", "EditableText"));
        compare(bands.data(row, Qt.UserRole + 2), 6);
        mouseDoubleClickSequence(pointAt(2));
        compare(bands.data(row, Qt.UserRole + 2), 0);
        compare(bands.data(row, Qt.UserRole + 1), 125);
    }

    function test_bypass_and_resets() {
        verify(Assistive.focus("Band 10 gain", "Slider"));
        press("Band 10 bypass", "CheckBox");
        verify(Assistive.has("1 bypassed"));
        compare(Assistive.find("Band 10 type", "ComboBox").description, App.equalizer.filterTypeTitles[2]);
        press("Reset Band 10", "Button");
        verify(!Assistive.has("1 bypassed"));
        App.equalizer.bands.setGain(1, 5);
        press("Reset all bands", "Button");
        compare(value("Band 2 gain"), 0);
        App.history.undo();
        compare(value("Band 2 gain"), 5);
    }

    function test_values_of_the_point_under_the_pointer_or_of_the_selected_one() {
        App.equalizer.bands.setFrequency(8, 7537);
        App.equalizer.bands.setGain(8, -2.5);
        settle();
        verify(Assistive.focus("Band 3 gain", "Slider"));
        compareTexts(["125 Hz · +0.0 dB · Q 1.00"]);
        const point = pointAt(8);
        mouseMove(point, point.width / 2, point.height / 2);
        tryVerify(() => Assistive.has("7537 Hz · -2.5 dB · Q 1.00"));
        mouseMove(window.contentItem, 5, 5);
        tryVerify(() => Assistive.has("125 Hz · +0.0 dB · Q 1.00"));
    }
}
