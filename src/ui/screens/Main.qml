import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// The window: toolbar, sidebar, and the screen that is selected in it.
Window {
    id: window

    property string destination: "equalizer"
    readonly property bool seen: visible && visibility !== Window.Minimized && visibility !== Window.Hidden

    title: qsTr("Ostrafine")
    width: 1280
    height: 900
    minimumWidth: 1020
    minimumHeight: 760
    color: Theme.paper

    onActiveChanged: {
        // The key that was held is let go of elsewhere.
        if (!active)
            App.engine.comparing = false;
    }

    Binding {
        target: App.spectrum
        property: "visible"
        value: window.seen
    }
    Shortcut {
        sequence: "Ctrl+Z"
        onActivated: App.history.undo()
    }
    Shortcut {
        sequences: ["Ctrl+Shift+Z", "Ctrl+Y"]
        onActivated: App.history.redo()
    }

    FocusScope {
        id: desk
        anchors.fill: parent
        focus: true
        // A popup takes the keyboard, and with it the release of the key.
        onActiveFocusChanged: if (!activeFocus)
            App.engine.comparing = false
        Keys.onPressed: event => {
            if (event.key !== Qt.Key_B || event.modifiers !== Qt.NoModifier || !App.engine.running)
                return;
            event.accepted = true;
            if (!event.isAutoRepeat)
                App.engine.comparing = true;
        }
        Keys.onReleased: event => {
            if (event.key !== Qt.Key_B || event.isAutoRepeat)
                return;
            event.accepted = true;
            App.engine.comparing = false;
        }

        ToolbarView {
            id: toolbar
            anchors.left: parent.left
            anchors.right: parent.right
            onSectionRequested: destination => window.destination = destination
        }
        SidebarView {
            id: sidebar
            anchors.left: parent.left
            anchors.top: toolbar.bottom
            anchors.bottom: parent.bottom
            destination: window.destination
            onChosen: destination => window.destination = destination
            onAboutRequested: aboutDialog.open()
        }
        MainView {
            anchors.left: sidebar.right
            anchors.right: parent.right
            anchors.top: toolbar.bottom
            anchors.bottom: parent.bottom
            destination: window.destination
            onSaveRequested: saveSheet.open()
        }
    }
    PresetDropArea {
        anchors.fill: parent
        onImporting: {
            if (!window.destination.startsWith("presets"))
                window.destination = "presetsMine";
        }
    }

    SalveazaPresetSheet {
        id: saveSheet
        objectName: "saveSheet"
    }
    AboutDialog {
        id: aboutDialog
        objectName: "aboutDialog"
    }
}
