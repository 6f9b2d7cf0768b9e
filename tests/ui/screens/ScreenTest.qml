import QtQuick
import QtTest
import Quorbel.Model
import Quorbel.Screens
import Quorbel.Testing

/// A case on the real window. Any warning of QML's fails it.
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
    function undoAll() {
        while (App.history.canUndo)
            App.history.undo();
    }
    function focusedName() {
        // The focused item comes after the items that contain it.
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
