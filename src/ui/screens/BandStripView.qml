import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// One band as a strip: gain, slider and frequency, faint while bypassed. The Tab key reaches only
/// the selected strip; Left and Right on its slider move to the neighbouring band.
FocusScope {
    id: strip

    required property int index
    required property double frequency
    required property double gain
    required property double q
    required property int filterType
    required property bool bypassed
    required property string frequencyLabel
    required property string gainLabel

    property bool selected: false
    readonly property string bandName: qsTr("Band %1").arg(index + 1)
    readonly property string frequencyText: Format.hertz(frequency)
    signal chosen
    /// Requests the keyboard focus for the band `step` strips away.
    signal moveRequested(int step)

    /// y in the strip of the highest gain, the lowest gain, and the frequency's centre.
    readonly property real topOfGain: rows.y + gainSlider.y + gainSlider.handleSize / 2
    readonly property real bottomOfGain: topOfGain + gainSlider.height - gainSlider.handleSize
    readonly property real frequencyCentre: rows.y + frequencyField.y + frequencyField.height / 2

    /// The focusable part of the slider.
    readonly property ValueHandle sliderHandle: gainSlider.handle

    function takeFocus() {
        sliderHandle.forceActiveFocus(Qt.TabFocusReason);
    }
    function leadAcross(step, event) {
        event.accepted = sliderHandle.activeFocus;
        if (event.accepted)
            moveRequested(step);
    }

    implicitWidth: Theme.stripWidth
    implicitHeight: rows.implicitHeight + Theme.unit
    onActiveFocusChanged: {
        if (activeFocus)
            chosen();
    }
    Keys.onLeftPressed: event => leadAcross(-1, event)
    Keys.onRightPressed: event => leadAcross(1, event)
    Accessible.role: Accessible.Grouping
    Accessible.name: bandName + ", " + frequencyText + (bypassed ? ", " + qsTr("bypassed") : "")

    Binding {
        target: strip.sliderHandle
        property: "activeFocusOnTab"
        value: strip.selected || strip.sliderHandle.activeFocus
    }
    Rectangle {
        anchors.fill: parent
        visible: strip.selected
        color: Theme.paper
        radius: Theme.radius
    }
    TapHandler {
        onTapped: strip.chosen()
    }

    ColumnLayout {
        id: rows
        anchors.fill: parent
        anchors.topMargin: Theme.unit / 2
        anchors.bottomMargin: Theme.unit / 2
        spacing: 0

        ValueField {
            Layout.fillWidth: true
            horizontalAlignment: TextInput.AlignHCenter
            activeFocusOnTab: strip.selected || activeFocus
            valueText: strip.gainLabel
            function parse(text: string): real {
                return App.equalizer.parseGain(text);
            }
            color: strip.bypassed ? Theme.inkSoft : Theme.ink
            accessibleName: qsTr("%1 gain, typed").arg(strip.bandName)
            onCommitted: value => App.equalizer.bands.setGain(strip.index, value)
        }
        ParamSlider {
            id: gainSlider
            Layout.alignment: Qt.AlignHCenter
            Layout.fillHeight: true
            Layout.minimumHeight: 11 * Theme.unit
            Layout.preferredHeight: 11 * Theme.unit
            orientation: Qt.Vertical
            movesSideways: false
            from: App.equalizer.minGain
            to: App.equalizer.maxGain
            stepSize: App.equalizer.gainStep
            origin: 0
            ticks: App.equalizer.gainMarks
            value: strip.gain
            opacity: strip.bypassed ? 0.45 : 1
            accessibleName: qsTr("%1 gain").arg(strip.bandName)
            valueText: qsTr("%1 dB").arg(strip.gainLabel)
            onMoved: App.equalizer.bands.setGain(strip.index, value)
            onResetRequested: App.equalizer.bands.setGain(strip.index, 0)
        }
        ValueField {
            id: frequencyField
            Layout.fillWidth: true
            horizontalAlignment: TextInput.AlignHCenter
            activeFocusOnTab: strip.selected || activeFocus
            valueText: strip.frequencyLabel
            function parse(text: string): real {
                return App.equalizer.parseFrequency(text);
            }
            color: strip.bypassed ? Theme.inkSoft : Theme.ink
            accessibleName: qsTr("%1 frequency").arg(strip.bandName)
            Accessible.description: strip.frequencyText
            onCommitted: value => App.equalizer.bands.setFrequency(strip.index, value)
        }
    }
}
