import QtQuick
import Quorbel.Dotmatrix

/// One preset (`rand`): name, purpose, content and actions. The list's keys move between rows; the Tab key reaches
/// the current row's buttons.
FocusScope {
    id: row

    required property int index
    required property string presetId
    required property string name
    required property string categoryTitle
    required property string notes
    required property string summary
    required property bool isUser
    required property bool playing
    required property bool favourite

    property bool current: false
    signal applyRequested
    signal favouriteRequested(bool isFavourite)
    signal menuRequested(Item button)
    signal exportRequested
    signal deleteRequested

    /// Anchor of the preset's menu.
    readonly property Item menuButton: more

    implicitHeight: line.implicitHeight + 3 * Theme.unit
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: categoryTitle + (notes !== "" ? ", " + notes : "") + ", " + summary + (favourite ? ", " + qsTr("Favourite") : "") + (playing ? ", " + qsTr("Playing") : "")
    Accessible.selectable: true
    Accessible.selected: playing
    Accessible.onPressAction: row.applyRequested()

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: row.menuRequested(more)
    }
    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 1
        color: Theme.rule
    }
    Rectangle {
        visible: row.playing
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.unit
        width: Theme.unit
        height: width
        radius: width / 2
        color: Theme.signal
    }

    WrapRow {
        id: line
        x: 3 * Theme.unit
        y: 1.5 * Theme.unit
        width: row.width - 5 * Theme.unit
        spacing: 2 * Theme.unit
        rowSpacing: Theme.unit

        Column {
            WrapRow.fills: true
            WrapRow.minimumWidth: Math.min(line.width, 34 * Theme.textUnit)
            spacing: Theme.unit / 2

            WrapRow {
                width: parent.width
                spacing: 1.5 * Theme.unit
                rowSpacing: Theme.unit / 2

                HeadingText {
                    WrapRow.minimumWidth: Math.min(implicitWidth, parent.width)
                    text: row.name
                }
                CaptionText {
                    text: row.categoryTitle
                }
                CaptionText {
                    visible: row.playing
                    text: qsTr("Playing")
                    color: Theme.signalInk
                    font.weight: Font.DemiBold
                }
            }
            BodyText {
                width: parent.width
                visible: text !== ""
                text: row.notes
                wrapMode: Text.WordWrap
            }
            CaptionText {
                width: parent.width
                text: row.summary
            }
        }
        DotIconButton {
            activeFocusOnTab: row.current || activeFocus
            checkable: true
            checked: row.favourite
            symbol: row.favourite ? "star.fill" : "star"
            accessibleName: qsTr("Favourite")
            Accessible.description: row.name
            onToggled: row.favouriteRequested(checked)
        }
        DotIconButton {
            visible: row.isUser
            activeFocusOnTab: row.current || activeFocus
            symbol: "trash"
            accessibleName: qsTr("Delete preset")
            Accessible.description: row.name
            onClicked: row.deleteRequested()
        }
        DotIconButton {
            activeFocusOnTab: row.current || activeFocus
            symbol: "square.and.arrow.up"
            accessibleName: qsTr("Export preset")
            Accessible.description: row.name
            onClicked: row.exportRequested()
        }
        DotIconButton {
            id: more
            activeFocusOnTab: row.current || activeFocus
            symbol: "ellipsis"
            accessibleName: qsTr("More")
            Accessible.description: row.name
            onClicked: row.menuRequested(more)
        }
        DotButton {
            activeFocusOnTab: row.current || activeFocus
            text: qsTr("Apply")
            Accessible.description: row.name
            onClicked: row.applyRequested()
        }
    }
}
