import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The name and caption of a stage. Its help appears under the pointer, and while the keyboard is on the
/// stage's switch.
ColumnLayout {
    id: head

    required property string name
    property string description: ""
    /// The stage's switch; it tells assistive technology the name and the help.
    property DotToggle toggle: null
    readonly property string help: StageTexts.help(name)

    spacing: Theme.unit / 4

    HoverHandler {
        id: over
    }
    DotToolTip {
        atStart: true
        // A screen that has just been left has no window for it.
        visible: head.Window.window !== null && (over.hovered || (head.toggle?.visualFocus ?? false))
        text: head.help
    }
    HeadingText {
        Layout.fillWidth: true
        text: head.name
        Accessible.ignored: head.toggle !== null
        Accessible.description: head.help
    }
    CaptionText {
        Layout.fillWidth: true
        visible: text !== ""
        text: head.description
    }
}
