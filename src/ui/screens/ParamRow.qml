import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// One value of a stage: its label, a slider over its range, and the value as text. The value in
/// use is the caller's; the row says where the user moves it.
RowLayout {
    id: row

    required property string label
    required property real value
    required property real from
    required property real to
    required property string valueText
    property real stepSize: 1
    property real origin: from
    property real defaultValue: from
    /// Where several stages on a screen have a value of this label.
    property string accessibleContext: ""
    signal moved(real value)

    /// Left free at the end, as wide as what the card's head has there.
    property real trailing: 0

    spacing: 2 * Theme.unit

    BodyText {
        // Below the name of the card, which stands beside its switch.
        Layout.leftMargin: 7 * Theme.unit
        Layout.preferredWidth: 22 * Theme.unit
        Layout.alignment: Qt.AlignVCenter
        text: row.label
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    ParamSlider {
        id: slider
        objectName: accessibleName
        Layout.fillWidth: true
        from: row.from
        to: row.to
        value: row.value
        stepSize: row.stepSize
        origin: row.origin
        accessibleName: row.accessibleContext === "" ? row.label
                                                     : row.accessibleContext + ", " + row.label
        valueText: row.valueText
        onMoved: row.moved(slider.value)
        onResetRequested: row.moved(row.defaultValue)
    }
    BodyText {
        Layout.preferredWidth: 13 * Theme.unit
        Layout.rightMargin: row.trailing
        Layout.alignment: Qt.AlignVCenter
        text: row.valueText
        Accessible.ignored: true
    }
}
