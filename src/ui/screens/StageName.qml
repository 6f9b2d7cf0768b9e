import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The name and caption of a stage. Its help appears on hover, and while the stage's switch has the keyboard
/// focus.
ColumnLayout {
    id: head

    required property string name
    property string description: ""
    /// The stage's switch, which exposes name and help to assistive technology.
    property DotToggle toggle: null
    readonly property string help: StageTexts.help(name)

    spacing: Theme.unit / 4

    HoverHandler {
        id: over
    }
    DotToolTip {
        atStart: true
        // A screen that was just left has no window.
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
