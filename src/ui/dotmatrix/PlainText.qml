import QtQuick

// The one kind of text of the window: shown as it is. `Text` by itself reads names of presets, devices and
// files as markup.
Text {
    textFormat: Text.PlainText
}
