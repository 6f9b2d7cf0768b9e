import QtQuick
import QtTest

// A case that fails on any warning, with its items in a window that is shown.
TestCase {
    when: windowShown
    visible: true
    width: 640
    height: 480

    function init() {
        failOnWarning(/.*/);
    }
}
