import Quorbel.Model

/// Asks for a name and saves the current settings as a user preset.
NameSheet {
    title: qsTr("Save Preset")
    acceptText: qsTr("Save")
    suggestion: qsTr("My Preset")
    onNamed: name => App.presets.save(name)
}
