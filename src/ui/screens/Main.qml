import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// The window: toolbar, sidebar, and the screen that is selected in it.
Window {
    id: window

    property string destination: "equalizer"
    /// With little room the sidebar shows symbols only, and the live panel is a line. A desktop may give a window
    /// less than its minimum.
    readonly property bool narrow: width < 900 * Theme.textScale
    readonly property bool low: height < 700 * Theme.textScale
    readonly property bool seen: visible && visibility !== Window.Minimized && visibility !== Window.Hidden

    title: qsTr("Ostrafine")
    // On a screen that has no room for these, the program makes them smaller.
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
    // Takes files that are dropped on it as presets.
    DropArea {
        id: area

        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            drop.accept(Qt.CopyAction);
            // First, because the list of presets shows the result.
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
