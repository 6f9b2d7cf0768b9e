import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix
import Quorbel.Model

/// The presets: all of them, the factory library, or the user's own.
Item {
    id: screen
    objectName: "presetsView"

    /// Which list (`Filtru`).
    required property int filter
    signal saveRequested

    /// What the last import or export said, and what of the file was not taken.
    property string report: ""
    property var reportDetails: []
    property bool reportIsWarning: false

    function show(result) {
        report = result.message;
        reportDetails = result.details;
        reportIsWarning = !result.ok;
    }

    Connections {
        target: App.presets
        function onExchanged(result) {
            screen.show(result);
        }
    }
    PresetFilterModel {
        id: filtered
        filter: screen.filter
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.rightMargin: 2 * Theme.unit
        anchors.bottomMargin: 2 * Theme.unit
        spacing: 2 * Theme.unit

        ScreenHeader {
            Layout.fillWidth: true
            title: filtered.title
            chips: [qsTr("%1 total").arg(filtered.count)]

            DotButton {
                text: qsTr("Import…")
                onClicked: App.presets.requestImport()
            }
            DotButton {
                text: qsTr("Save current…")
                onClicked: screen.saveRequested()
            }
        }
        Notice {
            Layout.fillWidth: true
            message: screen.report
            details: screen.reportDetails
            isWarning: screen.reportIsWarning
            onDismissed: screen.report = ""
        }
        DotCard {
            Layout.fillWidth: true
            Layout.fillHeight: true
            padding: 0

            ListView {
                id: lista
                objectName: "presetList"
                anchors.fill: parent
                anchors.margins: 1
                visible: count > 0
                clip: true
                activeFocusOnTab: true
                keyNavigationEnabled: true
                boundsBehavior: Flickable.StopAtBounds
                highlightMoveDuration: Theme.duration
                cacheBuffer: 60 * Theme.unit
                model: filtered
                T.ScrollBar.vertical: DotScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: filtered.title
                Keys.onReturnPressed: (currentItem as PresetRow)?.applyRequested()
                Keys.onEnterPressed: (currentItem as PresetRow)?.applyRequested()
                Keys.onDeletePressed: {
                    const row = currentItem as PresetRow;
                    if (row !== null && row.isUser)
                        row.deleteRequested();
                }

                highlight: Rectangle {
                    // Up to Qt 6.4 qmllint does not know the ids around a component.
                    // qmllint disable unqualified
                    visible: lista.activeFocus
                    // qmllint enable unqualified
                    color: "transparent"
                    border.color: Theme.signal
                    border.width: 2
                    radius: Theme.radius
                    z: 2
                }
                delegate: PresetRow {
                    id: rand
                    width: ListView.view.width
                    current: ListView.isCurrentItem
                    onActiveFocusChanged: {
                        if (activeFocus)
                            ListView.view.currentIndex = index;
                    }
                    onApplyRequested: App.presets.apply(presetId)
                    onDeleteRequested: App.presets.remove(presetId)
                    onExportRequested: App.presets.requestExport(presetId)
                }
            }
            ColumnLayout {
                anchors.centerIn: parent
                visible: lista.count === 0
                spacing: Theme.unit

                HeadingText {
                    Layout.alignment: Qt.AlignHCenter
                    text: qsTr("No presets here yet")
                }
                BodyText {
                    Layout.alignment: Qt.AlignHCenter
                    text: qsTr("Shape the sound, then use Save current… to keep it.")
                    color: Theme.inkSoft
                }
            }
        }
    }
}
