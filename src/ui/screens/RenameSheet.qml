import Quorbel.Model

/// Asks for another name of a preset of the user's.
NameSheet {
    property string presetId: ""

    title: qsTr("Rename Preset")
    acceptText: qsTr("Rename")
    onNamed: name => App.presets.rename(presetId, name)

    function rename(id: string, name: string) {
        presetId = id;
        suggestion = name;
        open();
    }
}
