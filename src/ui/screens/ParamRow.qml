import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// One number of a stage: its label, a slider over its range, and the value as text.
RowLayout {
    id: row

    required property Setting setting
    /// Left free at the end, as wide as what the card's head has there.
    property real trailing: 0

    spacing: 2 * Theme.unit

    BodyText {
        // Below the name of the card, which stands beside its switch.
        Layout.leftMargin: 7 * Theme.unit
        Layout.preferredWidth: 22 * Theme.unit
        Layout.alignment: Qt.AlignVCenter
        text: row.setting.label
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    ParamSlider {
        objectName: accessibleName
        Layout.fillWidth: true
        from: row.setting.from
        to: row.setting.to
        value: row.setting.value
        stepSize: row.setting.stepSize
        origin: row.setting.origin
        accessibleName: row.setting.name
        valueText: row.setting.text
        onMoved: row.setting.value = value
        onResetRequested: row.setting.value = row.setting.defaultValue
    }
    BodyText {
        Layout.preferredWidth: 13 * Theme.unit
        Layout.rightMargin: row.trailing
        Layout.alignment: Qt.AlignVCenter
        text: row.setting.text
        Accessible.ignored: true
    }
}
