import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// The window: toolbar, sidebar, and the selected screen.
Window {
    id: window

    property string destination: "equalizer"
    /// A small window shows only symbols in the sidebar and one line of the live panel. Some desktops ignore the
    /// minimum size.
    readonly property bool narrow: width < 900 * Theme.textScale
    readonly property bool low: height < 700 * Theme.textScale
    readonly property bool seen: visible && visibility !== Window.Minimized && visibility !== Window.Hidden

    title: qsTr("Ostrafine")
    // The program reduces these sizes on a smaller screen.
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

    FocusFollower {}
    WindowKeys {
        id: desk
        anchors.fill: parent
        focus: true
        page: screens
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
            low: window.low
            onSectionRequested: destination => window.destination = destination
        }
        SidebarView {
            id: sidebar
            anchors.left: parent.left
            anchors.top: toolbar.bottom
            anchors.bottom: parent.bottom
            destination: window.destination
            folded: window.narrow
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
            small: window.narrow || window.low
            onSaveRequested: saveSheet.open()
        }
    }
    // Imports dropped files as presets.
    DropArea {
        id: area

        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            drop.accept(Qt.CopyAction);
            // Switches the screen first, because the presets screen shows the result.
            if (!window.destination.startsWith("presets"))
                window.destination = "presetsMine";
            App.presets.importDropped(drop.urls);
        }

        Rectangle {
            anchors.fill: parent
            visible: area.containsDrag
            color: Theme.veil
            border.width: 2
            border.color: Theme.signal

            DotCard {
                anchors.centerIn: parent

                HeadingText {
                    text: qsTr("Drop presets and equaliser texts to import them")
                }
            }
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
