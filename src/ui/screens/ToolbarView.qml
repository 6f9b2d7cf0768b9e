import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// Start and stop, comparison, output, preset, undo, and buttons for the sidebar's sections.
Rectangle {
    id: toolbar

    signal sectionRequested(string firstDestination)

    /// Reduces the padding in a low window.
    property bool low: false
    /// Whether all controls fit into one row. The section buttons are hidden otherwise: the sidebar has them too.
    readonly property bool roomy: width >= (92 + 4 * 4) * Theme.textUnit

    /// Opens a section of the sidebar.
    component JumpItem: DotIconButton {
        required property string section

        accessibleName: qsTr("Opens the %1 section").arg(section)
    }

    implicitHeight: row.implicitHeight + 2 * row.y
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
    WrapRow {
        id: row
        x: 2 * Theme.unit
        y: (toolbar.low ? 1 : 2.5) * Theme.unit
        width: toolbar.width - 4 * Theme.unit
        spacing: Theme.unit
        rowSpacing: Theme.unit

        DotButton {
            id: startStop
            WrapRow.minimumWidth: Math.max(12 * Theme.textUnit, implicitWidth) // the same for both labels
            readonly property bool stops: App.engine.running || App.engine.leavingAlone

            primary: !startStop.stops
            text: startStop.stops ? qsTr("Stop") : qsTr("Start")
            symbol: startStop.stops ? "stop.fill" : "play.fill"
            Accessible.description: help.text
            onClicked: App.engine.toggle()

            DotToolTip {
                id: help
                visible: startStop.hovered
                text: startStop.stops ? qsTr("Stop processing") : qsTr("Start processing")
            }
        }
        // Plays unprocessed sound while held by mouse, space bar or B. Assistive technology toggles it,
        // because it cannot hold a button.
        DotButton {
            text: qsTr("Compare")
            primary: App.engine.comparing
            enabled: App.engine.running
            help: qsTr("Hold to hear the unprocessed sound (B)")
            Accessible.checkable: true
            Accessible.checked: App.engine.comparing
            Accessible.onPressAction: App.engine.comparing = !App.engine.comparing
            onPressedChanged: App.engine.comparing = pressed
            onEnabledChanged: {
                if (!enabled)
                    App.engine.comparing = false;
            }
        }
        Item {
            visible: toolbar.roomy
            implicitWidth: Theme.unit
        }
        JumpItem {
            visible: toolbar.roomy
            section: qsTr("Output")
            symbol: "hifispeaker.2"
            onClicked: toolbar.sectionRequested("devices")
        }
        DotComboBox {
            WrapRow.fills: true
            WrapRow.minimumWidth: 20 * Theme.textUnit
            WrapRow.maximumWidth: toolbar.roomy ? 34 * Theme.textUnit : -1
            objectName: "outputBox"
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
            visible: toolbar.roomy
            implicitWidth: Theme.unit
        }
        JumpItem {
            visible: toolbar.roomy
            section: qsTr("Presets")
            symbol: "music.note.list"
            onClicked: toolbar.sectionRequested("presetsAll")
        }
        DotComboBox {
            WrapRow.fills: true
            WrapRow.minimumWidth: 20 * Theme.textUnit
            WrapRow.maximumWidth: toolbar.roomy ? 34 * Theme.textUnit : -1
            objectName: "presetBox"
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
        DotIconButton {
            objectName: "undoButton"
            WrapRow.trailing: true
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
            visible: toolbar.roomy
            implicitWidth: Theme.unit
        }
        JumpItem {
            visible: toolbar.roomy
            section: qsTr("Tuning")
            symbol: "slider.vertical.3"
            onClicked: toolbar.sectionRequested("equalizer")
        }
        JumpItem {
            visible: toolbar.roomy
            section: qsTr("Help")
            symbol: "gearshape"
            onClicked: toolbar.sectionRequested("setup")
        }
    }
}
