import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The screen of the selected destination below the live panel.
Item {
    id: view
    objectName: "mainView"

    /// Raw value of `Destinatie`.
    required property string destination
    /// Reduces the live panel to one line.
    property bool small: false
    signal saveRequested

    /// Filter of the presets screen, kept while another screen is shown.
    property int presetFilter: PresetFilterModel.All

    onDestinationChanged: {
        const filters = {
            presetsAll: PresetFilterModel.All,
            presetsFactory: PresetFilterModel.Factory,
            presetsMine: PresetFilterModel.Mine
        };
        presetFilter = filters[destination] ?? presetFilter;
    }

    /// Open cards of the spatial screen, kept while another screen is shown.
    property var expandedStages: []

    function toggleStage(stage) {
        expandedStages = expandedStages.includes(stage) ? expandedStages.filter(open => open !== stage)
                                                        : expandedStages.concat(stage);
    }

    // Scrolls only if the panel and a warning leave too little height for the screen.
    DotScrollView {
        id: scroll
        anchors.fill: parent
        contentWidth: availableWidth
        contentHeight: column.y + column.height
        takesKeys: true
        accessibleName: App.navigation.titleOf(view.destination)

        ColumnLayout {
            id: column
            // The screens add the rest of the right margin, which holds their scroll bar, and scroll down to the
            // window's edge.
            x: (view.small ? 2 : 3) * Theme.unit
            y: (view.small ? 1 : 2) * Theme.unit
            width: view.width - x - (view.small ? 0 : Theme.unit)
            height: Math.max(view.height - y, implicitHeight)
            spacing: (view.small ? 1 : 2) * Theme.unit

            LiveOutputView {
                Layout.fillWidth: true
                Layout.rightMargin: 2 * Theme.unit
                line: view.small
            }
            Loader {
                id: screen
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredHeight: 0
                Layout.topMargin: -((item as ScreenPage)?.ringMargin ?? 0)
                // The list of presets needs at least the height of its head and one row.
                Layout.minimumHeight: Math.max(Math.min(view.height - 2 * Theme.unit, 20 * Theme.textUnit), (item as PresetsView)?.implicitHeight ?? 0)
                sourceComponent: {
                    switch (view.destination) {
                    case "spatial":
                        return spatial;
                    case "mixer":
                        return mixer;
                    case "devices":
                        return devices;
                    case "programs":
                        return programs;
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
            // At the bottom, where a new or dismissed warning moves nothing under the pointer.
            Notice {
                id: notice
                Layout.fillWidth: true
                Layout.rightMargin: 2 * Theme.unit
                Layout.bottomMargin: 2 * Theme.unit
                message: App.persistWarning
                isWarning: true
                onDismissed: App.dismissWarning()
            }
        }
    }

    Binding {
        target: screen.item as ScreenPage
        property: "covered"
        value: notice.visible ? notice.height + 4 * Theme.unit : 0
    }
    Binding {
        target: screen.item as ScreenPage
        property: "accessibleName"
        value: App.navigation.titleOf(view.destination)
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
        id: programs
        ProgramsView {}
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
