import QtQuick

// The only text type of the window, without markup: `Text` would interpret names of presets, devices and files
// as markup.
Text {
    textFormat: Text.PlainText
}
