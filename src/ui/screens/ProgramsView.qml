import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The programs' streams with their processing switches, and the remembered rules.
ScreenPage {
    id: view

    readonly property bool isSeen: Window.window !== null && Window.window.visible && Window.window.visibility !== Window.Minimized

    onIsSeenChanged: App.programs.watched = isSeen
    Component.onCompleted: App.programs.watched = isSeen
    Component.onDestruction: App.programs.watched = false

    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Programs")
        chips: [qsTr("%1 playing").arg(streams.count)]
    }
    DotCard {
        Layout.fillWidth: true
        padding: 0
        implicitHeight: streams.count > 0 ? rows.implicitHeight : none.implicitHeight + 6 * Theme.unit

        ColumnLayout {
            id: rows
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            spacing: 0

            Repeater {
                id: streams
                model: App.programs
                delegate: ProgramRow {
                    Layout.fillWidth: true
                }
            }
        }
        Column {
            id: none
            anchors.centerIn: parent
            width: parent.width - 4 * Theme.unit
            visible: streams.count === 0
            spacing: Theme.unit

            HeadingText {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("No program plays")
            }
            BodyText {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: qsTr("Every program that plays sound appears here.")
                color: Theme.inkSoft
            }
        }
    }
    DotCard {
        Layout.fillWidth: true
        padding: 0
        implicitHeight: rules.implicitHeight + 4 * Theme.unit

        ColumnLayout {
            id: rules
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.topMargin: 2 * Theme.unit
            spacing: Theme.unit

            HeadingText {
                Layout.fillWidth: true
                Layout.leftMargin: 2 * Theme.unit
                Layout.rightMargin: 2 * Theme.unit
                text: qsTr("Which programs are processed")
            }
            WrapRow {
                id: modes
                Layout.fillWidth: true
                Layout.leftMargin: 2 * Theme.unit
                Layout.rightMargin: 2 * Theme.unit
                spacing: 3 * Theme.unit
                rowSpacing: Theme.unit

                DotComboBox {
                    WrapRow.minimumWidth: Math.min(modes.width, 28 * Theme.textUnit)
                    accessibleName: qsTr("Programs to process")
                    model: [qsTr("All except those switched off"), qsTr("Only those switched on")]
                    currentIndex: App.programRules.othersProcessed ? 0 : 1
                    onActivated: index => App.programRules.othersProcessed = index === 0
                }
                DotToggle {
                    text: qsTr("Calls: leave alone")
                    checked: !App.programRules.callsProcessed
                    onToggled: App.programRules.callsProcessed = !App.programRules.callsProcessed
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0

                Repeater {
                    model: App.programRules
                    delegate: ProgramRuleRow {
                        Layout.fillWidth: true
                    }
                }
            }
            // Below the rows, so that the heading and the first row are visible together.
            CaptionText {
                Layout.fillWidth: true
                Layout.leftMargin: 2 * Theme.unit
                Layout.rightMargin: 2 * Theme.unit
                text: qsTr("A switch is remembered for its program. Calls in a browser cannot be told apart from its other sound.")
            }
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
