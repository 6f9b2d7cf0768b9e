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

    Binding {
        target: App.spectrum
        property: "visible"
        value: window.seen
    }

    WindowKeys {
        anchors.fill: parent
        focus: true
        page: screens.page
        onCompareHeldChanged: App.engine.comparing = compareHeld && App.engine.running
        onUndoRequested: App.history.undo()
        onRedoRequested: App.history.redo()
        onQuitRequested: Qt.exit(0)
        onRefreshRequested: App.devices.refresh()
        onStartStopRequested: App.engine.toggle()
        onScreenRequested: index => sidebar.choose(index)

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
            id: screens
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
