import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix
import Quorbel.Model

/// One numeric setting of a stage: label, slider, and value as text. On a narrow card the slider has its own line.
GridLayout {
    id: row

    required property Setting setting
    /// Width left free at the right end, equal to that of the trailing items in the card's head.
    property real trailing: 0

    readonly property bool narrow: width < Theme.indent + Theme.labelWidth + Theme.valueWidth + trailing + 20 * Theme.unit

    columns: narrow ? 2 : 3
    columnSpacing: 2 * Theme.unit
    rowSpacing: 0

    BodyText {
        // Aligns with the card's name, beside its switch.
        Layout.leftMargin: row.narrow ? 0 : Theme.indent
        Layout.minimumWidth: row.narrow ? 0 : Theme.labelWidth
        Layout.maximumWidth: row.narrow ? Infinity : Theme.labelWidth
        Layout.fillWidth: true
        Layout.alignment: Qt.AlignVCenter
        Layout.row: 0
        Layout.column: 0
        text: row.setting.label
        wrapMode: Text.Wrap
        lineHeight: 1
        Accessible.ignored: true
    }
    ParamSlider {
        objectName: accessibleName
        Layout.row: row.narrow ? 1 : 0
        Layout.column: row.narrow ? 0 : 1
        Layout.columnSpan: row.narrow ? 2 : 1
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
        Layout.row: 0
        Layout.column: row.narrow ? 1 : 2
        Layout.preferredWidth: row.narrow ? -1 : Math.max(Theme.valueWidth, implicitWidth)
        Layout.rightMargin: row.narrow ? 0 : row.trailing
        Layout.alignment: Qt.AlignVCenter
        text: row.setting.text
        Accessible.ignored: true
    }
}
