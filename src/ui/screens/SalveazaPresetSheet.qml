import Quorbel.Model

/// Asks for the name under which the current settings become a preset of the user's.
NameSheet {
    title: qsTr("Save Preset")
    acceptText: qsTr("Save")
    suggestion: qsTr("My Preset")
    onNamed: name => App.presets.save(name)
}
