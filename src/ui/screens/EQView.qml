import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// The equaliser: its response, a strip for each band, and the inspector of the selected band.
ScreenPage {
    id: screen

    property int selectedBand: 0
    property BandStripView selectedStrip: null

    function select(row) {
        selectedBand = row;
        selectedStrip = strips.itemAt(row) as BandStripView;
    }

    function focusBand(row) {
        const strip = strips.itemAt(row) as BandStripView;
        if (strip !== null)
            strip.takeFocus();
    }

    ScreenHeader {
        Layout.fillWidth: true
        title: qsTr("Equalizer")
        chips: {
            const bypassed = App.equalizer.bypassedCount;
            const bands = qsTr("%1 bands").arg(App.equalizer.count);
            return bypassed > 0 ? [bands, qsTr("%1 bypassed").arg(bypassed)] : [bands];
        }

        DotButton {
            text: qsTr("Reset all bands")
            help: qsTr("Sets all bands to their defaults; Global stays as it is")
            onClicked: App.equalizer.resetAll()
        }
    }
    ResponseCard {
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.preferredHeight: Math.max(23 * Theme.unit, implicitHeight)
        Layout.minimumHeight: Layout.preferredHeight
        selectedBand: screen.selectedBand
        onBandChosen: row => screen.select(row)
    }
    DotCard {
        Layout.fillWidth: true
        // Leaves most of the height to the curve.
        Layout.preferredHeight: Math.max(implicitHeight, Math.min(36 * Theme.unit, 0.42 * (screen.availableHeight + screen.covered - 9 * Theme.unit)))

        GridLayout {
            id: bandsLayout
            // Puts the inspector beside the strips if about five of them still fit.
            readonly property bool beside: width > Theme.labelWidth + 5 * Theme.stripWidth

            anchors.fill: parent
            columns: beside ? 3 : 1
            columnSpacing: 2 * Theme.unit
            rowSpacing: 2 * Theme.unit

            RowLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: Theme.unit / 2

                FaderScale {
                    Layout.fillHeight: true
                    Layout.bottomMargin: stripsView.bottomPadding
                    strip: screen.selectedStrip
                }
                DotScrollView {
                    id: stripsView
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    implicitWidth: 0
                    implicitHeight: stripsRow.implicitHeight + bottomPadding
                    bottomPadding: stripsRow.width > width ? 1.5 * Theme.unit : 0
                    contentWidth: stripsRow.width
                    contentHeight: availableHeight

                    RowLayout {
                        id: stripsRow
                        width: Math.max(stripsView.availableWidth, strips.count * Theme.stripWidth)
                        height: stripsView.availableHeight
                        spacing: 0

                        Repeater {
                            id: strips
                            model: App.equalizer.bands
                            onItemAdded: index => {
                                if (index === screen.selectedBand)
                                    screen.select(index);
                            }
                            onItemRemoved: index => {
                                if (index === screen.selectedBand)
                                    screen.selectedStrip = null;
                            }
                            delegate: BandStripView {
                                Layout.fillWidth: true
                                Layout.fillHeight: true
                                Layout.preferredWidth: 1
                                // Up to Qt 6.4 qmllint does not know the ids around a delegate.
                                // qmllint disable unqualified
                                selected: screen.selectedBand === index
                                onChosen: screen.select(index)
                                onMoveRequested: step => screen.focusBand(index + step)
                                // qmllint enable unqualified
                            }
                        }
                    }
                }
            }
            Rectangle {
                Layout.fillHeight: bandsLayout.beside
                Layout.fillWidth: !bandsLayout.beside
                implicitWidth: 1
                implicitHeight: 1
                color: Theme.rule
            }
            BandInspector {
                Layout.preferredWidth: Theme.labelWidth
                Layout.maximumWidth: bandsLayout.beside ? Theme.labelWidth : Infinity
                Layout.fillWidth: !bandsLayout.beside
                Layout.alignment: Qt.AlignTop
                strip: screen.selectedStrip
            }
        }
    }
}
