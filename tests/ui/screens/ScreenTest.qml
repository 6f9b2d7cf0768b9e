import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Screens
import Quorbel.Testing

/// A test case on the real window. Fails on any QML warning.
TestCase {
    id: testCase

    property Main window: null
    property Component windowComponent: Component {
        Main {}
    }

    function open(destination) {
        window.destination = destination;
        settle();
    }
    function resize(width, height) {
        window.width = width;
        window.height = height;
        settle();
    }
    function part(name) {
        return findChild(window.contentItem, name);
    }
    function settle() {
        Assistive.settle();
    }
    function compareTexts(expected) {
        const names = Assistive.names();
        for (const text of expected)
            verify(names.includes(text), "missing: " + text);
    }
    function value(name) {
        return Assistive.find(name, "Slider").value ?? Assistive.find(name, "Dial").value;
    }
    function press(name, role) {
        verify(Assistive.press(name, role ?? ""), "cannot be pressed: " + name);
        settle();
    }
    function setValue(name, to) {
        verify(Assistive.setValue(name, to), "cannot be set: " + name);
    }
    function type(text: string) {
        for (const letter of text)
            keyClick(letter);
    }
    /// Frequency, gain and Q.
    function bandFacts(row: int): var {
        const bands = App.equalizer.bands;
        return [1, 2, 3].map(role => bands.data(bands.index(row, 0), Qt.UserRole + role));
    }
    /// Drags a curve point from its centre, pixel by pixel.
    function dragPoint(row: int, dx: int, dy: int) {
        const point = part("bandPoint" + row);
        const curve = point.curve;
        const x = point.x + point.width / 2, y = point.y + point.height / 2;
        const steps = Math.max(Math.abs(dx), Math.abs(dy));
        mousePress(curve, x, y);
        for (let step = 1; step <= steps; ++step)
            mouseMove(curve, x + dx * step / steps, y + dy * step / steps, -1, Qt.LeftButton);
        mouseRelease(curve, x + dx, y + dy);
    }
    function undoAll() {
        while (App.history.canUndo)
            App.history.undo();
    }
    function focusedName() {
        // A focused item follows the items that contain it.
        return (Assistive.all().filter(entry => entry.focused).pop() ?? {}).name;
    }

    when: windowShown

    function initTestCase() {
        failOnWarning(/.?/);
        window = windowComponent.createObject(null);
        Assistive.window = window;
        resize(1020, 760);
        window.show();
        window.requestActivate();
        tryCompare(window, "active", true);
    }
    function init() {
        failOnWarning(/.?/);
        open("equalizer");
    }
    function cleanup() {
        App.engine.stop();
        undoAll();
    }
    function cleanupTestCase() {
        Assistive.window = null;
        window.destroy();
    }
}
