import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The screen of the selected destination below the live panel.
Item {
    id: view
    objectName: "mainView"

    /// A raw value of `Destinatie`.
    required property string destination
    signal saveRequested

    /// The screen itself.
    readonly property Item page: screen.item as Item

    /// The list that the presets screen shows or would show.
    property int presetFilter: PresetFilterModel.All

    onDestinationChanged: {
        const filters = {
            presetsAll: PresetFilterModel.All,
            presetsFactory: PresetFilterModel.Factory,
            presetsMine: PresetFilterModel.Mine
        };
        presetFilter = filters[destination] ?? presetFilter;
    }

    /// Outlives the spatial screen, so that its cards are as they were left.
    property var expandedStages: []

    function toggleStage(stage) {
        expandedStages = expandedStages.includes(stage) ? expandedStages.filter(open => open !== stage)
                                                        : expandedStages.concat(stage);
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 3 * Theme.unit
        anchors.topMargin: 2 * Theme.unit
        anchors.rightMargin: Theme.unit // the screens bring the rest, with their scroll bar in it
        anchors.bottomMargin: 0 // screens scroll to the window's end
        spacing: 2 * Theme.unit

        Notice {
            Layout.fillWidth: true
            message: App.persistWarning
            isWarning: true
            Layout.rightMargin: 2 * Theme.unit
            onDismissed: App.dismissWarning()
        }
        LiveOutputView {
            Layout.fillWidth: true
            Layout.rightMargin: 2 * Theme.unit
        }
        Loader {
            id: screen
            Layout.fillWidth: true
            Layout.fillHeight: true
            sourceComponent: {
                switch (view.destination) {
                case "spatial":
                    return spatial;
                case "mixer":
                    return mixer;
                case "devices":
                    return devices;
                case "limiter":
                    return limiter;
                case "presetsAll":
                case "presetsFactory":
                case "presetsMine":
                    return presets;
                case "setup":
                    return setup;
                }
                return equalizer;
            }
        }
    }

    // Up to Qt 6.4 qmllint does not know the ids around a component.
    // qmllint disable unqualified
    Component {
        id: equalizer
        EQView {}
    }
    Component {
        id: spatial
        SpatialView {
            expanded: view.expandedStages
            onExpansionRequested: stage => view.toggleStage(stage)
        }
    }
    Component {
        id: mixer
        MixerView {}
    }
    Component {
        id: devices
        DevicesView {}
    }
    Component {
        id: limiter
        LimiterGainView {}
    }
    Component {
        id: presets
        PresetsView {
            filter: view.presetFilter
            onSaveRequested: view.saveRequested()
        }
    }
    Component {
        id: setup
        SetupGuideView {}
    }
    // qmllint enable unqualified
}
