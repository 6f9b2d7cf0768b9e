import QtQuick
import QtQuick.Templates as T
import Quorbel.Dotmatrix

T.MenuItem {
    id: control

    property string symbol: ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(Theme.controlHeight, implicitContentHeight + 1.5 * Theme.unit)
    leftPadding: Theme.unit
    rightPadding: 2 * Theme.unit
    spacing: Theme.unit
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    opacity: enabled ? 1 : Theme.disabledOpacity

    Accessible.name: text
    Accessible.onPressAction: {
        clicked();
        triggered();
    }

    contentItem: LabelFace {
        symbol: control.checked ? "checkmark" : control.symbol
        keepSymbolSpace: true
        text: control.text
        font: control.font
        spacing: control.spacing
        color: control.highlighted ? Theme.card : Theme.ink
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.highlighted ? Theme.ink : "transparent"
    }
}
