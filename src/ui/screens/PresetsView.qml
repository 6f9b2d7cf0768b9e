import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quorbel.Dotmatrix
import Quorbel.Model

/// The presets: all of them, the factory library, or the user's own.
Item {
    id: screen
    objectName: "presetsView"

    /// The shown list (`Filtru`).
    required property int filter
    signal saveRequested

    /// Result of the last import or export, and the file's rejected lines.
    property string report: ""
    property var reportDetails: []
    property bool reportIsWarning: false
    property bool reportLacksGain: false

    function show(result) {
        report = result.message;
        reportDetails = result.details;
        reportIsWarning = !result.ok;
        reportLacksGain = result.lacksGain;
    }

    function say(what) {
        report = what;
        reportDetails = [];
        reportIsWarning = false;
        reportLacksGain = false;
    }
    function update(presetId, name) {
        App.presets.update(presetId);
        say(qsTr("%1 has the current settings now.").arg(name));
    }
    /// Copies a preset and moves the focus to the copy if the list shows it.
    function duplicate(presetId) {
        const row = filtered.rowOf(App.presets.duplicate(presetId));
        if (row < 0) {
            say(qsTr("The copy is in the list Mine."));
            return;
        }
        lista.currentIndex = row;
        lista.positionViewAtIndex(row, ListView.Contain);
        lista.forceActiveFocus(Qt.OtherFocusReason);
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
        search: searchField.text
    }
    Shortcut {
        sequence: "Ctrl+F"
        onActivated: {
            searchField.forceActiveFocus(Qt.ShortcutFocusReason);
            searchField.selectAll();
        }
    }
    NameSheet {
        id: renameSheet

        property string presetId: ""

        objectName: "renameSheet"
        title: qsTr("Rename Preset")
        acceptText: qsTr("Rename")
        onNamed: name => App.presets.rename(presetId, name)

        function rename(id: string, name: string) {
            presetId = id;
            suggestion = name;
            open();
        }
    }
    PresetMenu {
        id: rowMenu
        onRenameRequested: renameSheet.rename(presetId, presetName)
        onUpdateRequested: screen.update(presetId, presetName)
        onDuplicateRequested: screen.duplicate(presetId)
    }

    implicitHeight: rows.implicitHeight + 2 * Theme.unit

    ColumnLayout {
        id: rows
        anchors.fill: parent
        anchors.rightMargin: 2 * Theme.unit
        anchors.bottomMargin: 2 * Theme.unit
        spacing: 2 * Theme.unit

        ScreenHeader {
            Layout.fillWidth: true
            title: filtered.title
            readonly property string found: qsTr("%1 found").arg(filtered.count)
            readonly property string total: qsTr("%1 total").arg(filtered.total)
            chips: searchField.text === "" ? [total] : [total, found]

            DotButton {
                text: qsTr("Import…")
                help: qsTr("Reads a preset or an equalizer text from a file and applies it")
                onClicked: App.presets.requestImport()
            }
            DotButton {
                text: qsTr("Export current…")
                onClicked: App.presets.requestExportCurrent()
            }
            DotButton {
                text: qsTr("Save current…")
                help: qsTr("Keeps the bands and the spatial settings as a preset of your own")
                onClicked: screen.saveRequested()
            }
        }
        Notice {
            Layout.fillWidth: true
            message: screen.report
            details: screen.reportDetails
            isWarning: screen.reportIsWarning
            action: screen.reportLacksGain && App.level.overshoots ? App.level.lowerToFullScaleText : ""
            actionHelp: qsTr("The file has no preamp, and the highest point is above 0 dB: lowers the preset's gain")
            onActed: App.level.lowerToFullScale()
            onDismissed: screen.report = ""
        }
        DotTextField {
            id: searchField
            Layout.fillWidth: true
            leftPadding: 4 * Theme.unit
            placeholder: qsTr("Search")
            accessibleName: qsTr("Search presets")
            Accessible.description: text === "" ? "" : qsTr("%1 found").arg(filtered.count)
            Keys.onDownPressed: lista.forceActiveFocus(Qt.TabFocusReason)
            Keys.onEscapePressed: event => {
                event.accepted = text !== "";
                clear();
            }

            Symbol {
                x: 1.5 * Theme.unit
                anchors.verticalCenter: parent.verticalCenter
                name: "magnifyingglass"
                size: 2 * Theme.unit
                color: Theme.inkSoft
            }
        }
        DotCard {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: lista.count === 0 ? none.implicitHeight + 4 * Theme.unit : 10 * Theme.textUnit
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
                // Creates no rows beyond the view: a search could remove them while they are being created.
                cacheBuffer: 0
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
                Keys.onPressed: event => {
                    const row = currentItem as PresetRow;
                    if (row === null)
                        return;
                    if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier) {
                        event.accepted = true;
                        row.menuRequested(row.menuButton);
                    } else if (event.key === Qt.Key_F2 && row.isUser) {
                        event.accepted = true;
                        renameSheet.rename(row.presetId, row.name);
                    }
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
                    onFavouriteRequested: isFavourite => App.presets.setFavourite(presetId, isFavourite)
                    onMenuRequested: button => {
                        ListView.view.currentIndex = index;
                        rowMenu.openBelow(rand, button); // qmllint disable unqualified
                    }
                }
            }
            Column {
                id: none
                anchors.centerIn: parent
                width: parent.width - 4 * Theme.unit
                visible: lista.count === 0
                spacing: Theme.unit

                HeadingText {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: filtered.total > 0 ? qsTr("No preset is found") : qsTr("No presets here yet")
                }
                BodyText {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: filtered.total > 0 ? qsTr("The search looks into names and descriptions.") : qsTr("Shape the sound, then use Save current… to keep it.")
                    color: Theme.inkSoft
                }
            }
        }
    }
}
