import QtQuick
import Quorbel.Dotmatrix

// A spectrum: levels 0..1 as columns of dots. Best at widths of columns times a whole number of units.
DotBarsItem {
    property string accessibleName: ""

    Accessible.role: Accessible.Graphic
    Accessible.name: accessibleName
}
