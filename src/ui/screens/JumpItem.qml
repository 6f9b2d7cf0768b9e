import QtQuick
import Quorbel.Dotmatrix

/// A toolbar item that leads to a section of the sidebar.
DotIconButton {
    required property string section

    accessibleName: qsTr("Opens the %1 section").arg(section)
}
