import QtQuick
import Quorbel.Dotmatrix

// A spectrum: levels 0 to 1 as columns of dots, best if each column is a whole number of units wide.
DotBarsItem {
    property string accessibleName: ""

    Accessible.role: Accessible.Graphic
    Accessible.name: accessibleName
}
