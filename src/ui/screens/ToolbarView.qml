import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// Start and stop, the output, the preset, and the ways to the sidebar's sections.
Rectangle {
    id: toolbar

    signal sectionRequested(string firstDestination)

    implicitHeight: 9 * Theme.unit
    color: Theme.card
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Toolbar")

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: Theme.hairline
        color: Theme.rule
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 2 * Theme.unit
        anchors.rightMargin: 2 * Theme.unit
        spacing: Theme.unit

        DotButton {
            id: startStop
            Layout.preferredWidth: 12 * Theme.unit
            primary: !App.engine.running
            text: App.engine.running ? qsTr("Stop") : qsTr("Start")
            symbol: App.engine.running ? "stop.fill" : "play.fill"
            Accessible.description: help.text
            onClicked: App.engine.toggle()

            DotToolTip {
                id: help
                visible: startStop.hovered
                text: App.engine.running ? qsTr("Stop processing") : qsTr("Start processing")
            }
        }
        CompareButton {}
        Item {
            implicitWidth: Theme.unit
        }
        JumpItem {
            section: qsTr("Output")
            symbol: "hifispeaker.2"
            onClicked: toolbar.sectionRequested("devices")
        }
        DotComboBox {
            Layout.fillWidth: true
            Layout.minimumWidth: 20 * Theme.unit
            Layout.maximumWidth: 34 * Theme.unit
            title: qsTr("Output")
            accessibleName: qsTr("Output")
            Accessible.description: displayText
            model: App.devices
            textRole: "name"
            currentIndex: App.devices.currentIndex
            displayText: App.devices.currentIndex >= 0 ? App.devices.currentName : qsTr("No output device")
            onActivated: index => App.devices.select(valueAt(index))
            valueRole: "uid"
        }
        Item {
            implicitWidth: Theme.unit
        }
        JumpItem {
            section: qsTr("Presets")
            symbol: "music.note.list"
            onClicked: toolbar.sectionRequested("presetsAll")
        }
        DotComboBox {
            Layout.fillWidth: true
            Layout.minimumWidth: 20 * Theme.unit
            Layout.maximumWidth: 34 * Theme.unit
            title: qsTr("Preset")
            accessibleName: qsTr("Preset")
            Accessible.description: displayText
            model: App.presets.choices
            textRole: "name"
            valueRole: "presetId"
            groupRole: "group"
            currentIndex: App.presets.choices.currentIndex
            currentMarked: App.presets.choices.currentUnchanged
            displayText: App.presets.activeName
            onActivated: index => App.presets.apply(valueAt(index))
        }
        Item {
            Layout.fillWidth: true
            Layout.minimumWidth: Theme.unit
        }
        DotIconButton {
            objectName: "undoButton"
            symbol: "undo"
            enabled: App.history.canUndo
            accessibleName: App.history.undoText
            onClicked: App.history.undo()
        }
        DotIconButton {
            symbol: "redo"
            enabled: App.history.canRedo
            accessibleName: App.history.redoText
            onClicked: App.history.redo()
        }
        Item {
            implicitWidth: Theme.unit
        }
        JumpItem {
            section: qsTr("Tuning")
            symbol: "slider.vertical.3"
            onClicked: toolbar.sectionRequested("equalizer")
        }
        JumpItem {
            section: qsTr("Help")
            symbol: "gearshape"
            onClicked: toolbar.sectionRequested("setup")
        }
    }
}
