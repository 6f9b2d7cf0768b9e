import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Model

/// Takes files that are dropped on it as presets.
DropArea {
    id: area

    /// Comes before the import, whose result the list of presets shows.
    signal importing

    keys: ["text/uri-list"]
    onDropped: drop => {
        drop.accept(Qt.CopyAction);
        area.importing();
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
