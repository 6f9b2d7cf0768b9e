import QtQuick
import QtTest
import Quorbel.Testing

// A case that fails on any warning, with its items in a window that is shown.
TestCase {
    id: testCase

    when: windowShown
    visible: true
    width: 640
    height: 480

    function init() {
        failOnWarning(/.*/);
        Assistive.window = testCase.Window.window;
    }
}
