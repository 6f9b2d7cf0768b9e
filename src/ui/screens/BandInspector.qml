import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// Further controls of the selected band: Q, filter type, bypass and reset.
ColumnLayout {
    id: inspector

    required property BandStripView strip

    readonly property int row: strip !== null ? strip.index : -1
    readonly property string bandName: strip !== null ? strip.bandName : ""
    readonly property real q: strip !== null ? strip.q : 1

    spacing: Theme.unit
    enabled: strip !== null

    CaptionText {
        Layout.fillWidth: true
        text: inspector.strip !== null ? inspector.bandName + " · " + inspector.strip.frequencyText : ""
        Accessible.role: Accessible.Heading
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.unit

        ParamKnob {
            id: knob
            logarithmic: true
            from: App.equalizer.minQ
            to: App.equalizer.maxQ
            stepSize: 0.1
            value: inspector.q
            accessibleName: qsTr("%1 Q").arg(inspector.bandName)
            valueText: Format.fixed(inspector.q, 2)
            onMoved: App.equalizer.bands.setQ(inspector.row, value)
            onResetRequested: App.equalizer.bands.setQ(inspector.row, 1)
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            CaptionText {
                Layout.leftMargin: Theme.unit / 2
                text: qsTr("Q")
                Accessible.ignored: true
            }
            ValueField {
                Layout.fillWidth: true
                valueText: Format.fixed(inspector.q, 2)
                function parse(text: string): real {
                    return App.equalizer.parseQ(text);
                }
                accessibleName: qsTr("%1 Q, typed").arg(inspector.bandName)
                onCommitted: value => App.equalizer.bands.setQ(inspector.row, value)
            }
        }
    }
    DotComboBox {
        Layout.fillWidth: true
        title: qsTr("Type")
        model: App.equalizer.filterTypeTitles
        currentIndex: inspector.strip !== null ? inspector.strip.filterType : 0
        accessibleName: qsTr("%1 type").arg(inspector.bandName)
        Accessible.description: displayText
        onActivated: index => App.equalizer.bands.setFilterType(inspector.row, index)
    }
    WrapRow {
        Layout.fillWidth: true
        rowSpacing: Theme.unit
        spacing: Theme.unit

        DotToggle {
            text: qsTr("Bypass")
            checked: inspector.strip !== null && inspector.strip.bypassed
            accessibleName: qsTr("%1 bypass").arg(inspector.bandName)
            onToggled: App.equalizer.bands.setBypassed(inspector.row, !inspector.strip.bypassed)
        }
        DotButton {
            WrapRow.trailing: true
            flat: true
            text: qsTr("Reset")
            help: qsTr("Sets this band to its default")
            Accessible.name: qsTr("Reset %1").arg(inspector.bandName)
            onClicked: App.equalizer.bands.resetBand(inspector.row)
        }
    }
}
