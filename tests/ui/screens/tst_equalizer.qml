import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Testing

ScreenTest {
    id: testCase
    name: "Equalizer"

    function test_typed_values_data() {
        return [
            { tag: "frequency", field: "Band 3 frequency", typed: "8k", fact: 0, value: 8000, shown: "8k" },
            { tag: "gain", field: "Band 3 gain, typed", typed: "-3 dB", fact: 1, value: -3, shown: "-3.0" },
            { tag: "q", field: "Band 3 Q, typed", typed: ".7", fact: 2, value: 0.7, shown: "0.70" },
            { tag: "beyond the range", field: "Band 3 gain, typed", typed: "40", fact: 1, value: 12, shown: "+12.0" },
            { tag: "no number", field: "Band 3 gain, typed", typed: "loud", fact: 1, value: 0, shown: "+0.0" }
        ];
    }
    function test_typed_values(data) {
        verify(Assistive.focus("Band 3 gain", "Slider")); // chooses the band
        verify(Assistive.focus(data.field, "EditableText"));
        keySequence("Ctrl+A");
        type(data.typed);
        keyClick(Qt.Key_Return);
        fuzzyCompare(bandFacts(2)[data.fact], data.value, 1e-4);
        compare(Assistive.find(data.field, "EditableText").text, data.shown);
    }

    function test_dragging_a_point_is_one_step() {
        const point = part("bandPoint5");
        dragPoint(5, 80, -40);
        const [hertz, gain] = bandFacts(5);
        verify(hertz > 1100 && hertz < 8000, "frequency " + hertz);
        verify(gain > 1 && gain <= 12, "gain " + gain);
        fuzzyCompare(gain, Math.round(gain * 10) / 10, 1e-4);
        fuzzyCompare(point.x + point.width / 2, point.curve.xOfFrequency(hertz), 0.5); // at the band's frequency
        App.history.undo();
        compare(bandFacts(5), [1000, 0, 1]);
        verify(!App.history.canUndo);
    }

    function test_resets_by_the_pointer_data() {
        return [
            { tag: "double click", reset: item => mouseDoubleClickSequence(item) },
            { tag: "control click", reset: item => mouseClick(item, item.width / 2, 8, Qt.LeftButton, Qt.ControlModifier) }
        ];
    }
    function test_resets_by_the_pointer(data) {
        const bands = App.equalizer.bands;
        bands.setGain(2, 6);
        bands.setFrequency(2, 200);
        // On the slider: the gain. On the point: the band.
        data.reset(Assistive.item("Band 3 gain", "Slider"));
        compare(bandFacts(2), [200, 0, 1]);
        bands.setGain(2, 6);
        mouseDoubleClickSequence(Assistive.item("Band 3 gain, typed", "EditableText"));
        compare(bandFacts(2), [200, 6, 1]);
        data.reset(part("bandPoint2"));
        compare(bandFacts(2), [125, 0, 1]);
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
        const point = part("bandPoint8");
        mouseMove(point, point.width / 2, point.height / 2);
        tryVerify(() => Assistive.has("7537 Hz · -2.5 dB · Q 1.00"));
        mouseMove(window.contentItem, 5, 5);
        tryVerify(() => Assistive.has("125 Hz · +0.0 dB · Q 1.00"));
    }
}
