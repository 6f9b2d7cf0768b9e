import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One stage: switch, name, value, and all its controls while it is open.
DotCard {
    id: card

    required property string name
    required property string description
    required property string readout
    property string readoutUnit: ""
    readonly property bool narrow: availableWidth < Theme.indent + Theme.labelWidth + Theme.valueWidth + Theme.expanderWidth + 26 * Theme.unit
    required property bool on
    property bool expanded: false
    default property alias controls: controlColumn.data
    signal switched
    signal expandRequested

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        WrapRow {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit
            rowSpacing: Theme.unit

            RowLayout {
                WrapRow.minimumWidth: Theme.indent + (card.narrow ? 16 * Theme.textUnit : Theme.labelWidth)
                WrapRow.fills: true
                spacing: 2 * Theme.unit

                DotToggle {
                    id: toggle
                    checked: card.on
                    accessibleName: card.name
                    Accessible.description: head.help
                    onToggled: card.switched()
                }
                StageName {
                    id: head
                    Layout.preferredWidth: Theme.labelWidth
                    Layout.fillWidth: true
                    name: card.name
                    description: card.description
                    toggle: toggle
                }
            }
            RowLayout {
                WrapRow.minimumWidth: Math.max(Theme.valueWidth, implicitWidth)
                spacing: Theme.unit / 2
                Accessible.role: Accessible.StaticText
                Accessible.name: card.name + ": " + card.readout + card.readoutUnit

                DotText {
                    text: card.readout
                    dotSize: 2
                    color: card.on ? Theme.ink : Theme.inkSoft
                    Accessible.ignored: true
                }
                BodyText {
                    Layout.fillWidth: true
                    text: card.readoutUnit
                    color: card.on ? Theme.ink : Theme.inkSoft
                    Accessible.ignored: true
                }
            }
            Item {
                implicitWidth: Math.max(card.narrow ? 0 : Theme.expanderWidth, expander.implicitWidth + Math.max(0, moreWord.advanceWidth - shownWord.advanceWidth))
                implicitHeight: expander.implicitHeight
                height: implicitHeight

                // Reserves the width of the longer label.
                TextMetrics {
                    id: shownWord
                    font: expander.font
                    text: expander.text
                }
                TextMetrics {
                    id: moreWord
                    font: expander.font
                    text: qsTr("All controls")
                }
                DotButton {
                    id: expander
                    x: card.narrow ? 0 : parent.width - width
                    width: Math.min(implicitWidth, parent.width)
                    flat: true
                    text: card.expanded ? qsTr("Hide") : qsTr("All controls")
                    symbol: card.expanded ? "chevron.up" : "chevron.down"
                    Accessible.description: card.name
                    help: card.expanded ? qsTr("Hides the stage's controls") : qsTr("Shows the stage's controls")
                    onClicked: card.expandRequested()
                }
            }
        }
        ColumnLayout {
            id: controlColumn
            Layout.fillWidth: true
            Layout.topMargin: 2 * Theme.unit
            visible: card.expanded
            spacing: Theme.unit
        }
    }
}
