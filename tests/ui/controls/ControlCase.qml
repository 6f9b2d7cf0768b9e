import QtQuick
import QtTest
import Quorbel.Testing

// A test case in a visible window. Fails on any warning.
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
