import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The output devices with their profiles, and the program's global switches.
ScreenPage {
    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Devices")
        chips: [qsTr("%1 found").arg(devices.count)]

        DotButton {
            text: qsTr("Refresh")
            symbol: "arrow.clockwise"
            help: qsTr("Refresh device list")
            onClicked: App.devices.refresh()
        }
    }
    DotCard {
        Layout.fillWidth: true
        padding: 0
        implicitHeight: devices.count > 0 ? rows.implicitHeight : Math.max(16 * Theme.unit, none.implicitHeight + 4 * Theme.unit)

        ColumnLayout {
            id: rows
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            spacing: 0

            Repeater {
                id: devices
                model: App.devices
                delegate: DeviceRow {
                    Layout.fillWidth: true
                    onClicked: App.devices.select(uid)
                }
            }
        }
        Column {
            id: none
            anchors.centerIn: parent
            width: parent.width - 4 * Theme.unit
            visible: devices.count === 0
            spacing: Theme.unit

            HeadingText {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("No output device found")
            }
            BodyText {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: qsTr("Connect speakers or headphones, then press Refresh.")
                color: Theme.inkSoft
            }
        }
    }
    DotCard {
        Layout.fillWidth: true
        padding: 0
        implicitHeight: profiles.implicitHeight + 4 * Theme.unit

        ColumnLayout {
            id: profiles
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.topMargin: 2 * Theme.unit
            spacing: 0

            HeadingText {
                Layout.fillWidth: true
                Layout.leftMargin: 2 * Theme.unit
                Layout.rightMargin: 2 * Theme.unit
                text: qsTr("A profile for every output")
            }
            Repeater {
                model: App.profiles
                delegate: ProfileRow {
                    Layout.fillWidth: true
                }
            }
            // Below the rows, so that the heading and the first row are visible together.
            CaptionText {
                Layout.fillWidth: true
                Layout.leftMargin: 2 * Theme.unit
                Layout.rightMargin: 2 * Theme.unit
                text: qsTr("An output with a profile plays with settings of its own, which your changes belong to. One that is left alone is not processed while it is in use.")
            }
        }
    }
    SwitchCard {
        Layout.fillWidth: true
        title: qsTr("Spectrum analyzer (visual only)")
        explanation: qsTr("Drives the graphic in the panel above. Visual only — it does not touch the sound.")
        checked: App.setting("spectrumEnabled").on
        onToggled: App.setting("spectrumEnabled").toggle()
    }
    SwitchCard {
        Layout.fillWidth: true
        title: qsTr("Start at login")
        explanation: qsTr("If Ostrafine was processing when it last ended, it continues at your next login, without a window.")
        note: App.startAtLogin.note
        offered: App.startAtLogin.offered
        checked: App.startAtLogin.on
        onToggled: App.startAtLogin.toggle()
    }
    DriverNote {
        Layout.fillWidth: true
    }
    Item {
        Layout.fillHeight: true
    }
}
