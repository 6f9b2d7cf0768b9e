import QtQuick
import Quorbel.Dotmatrix

// A level between `from` and `to`, lit from `origin`, with a mark at `peak`.
DotMeterItem {
    property string accessibleName: ""
    property string valueText: ""

    Accessible.role: Accessible.Indicator
    Accessible.name: accessibleName
    Accessible.description: valueText
}
