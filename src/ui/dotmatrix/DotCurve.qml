import QtQuick
import Quorbel.Dotmatrix

// A response over frequency. See DotCurveItem for the axes and where things are drawn.
DotCurveItem {
    property string accessibleName: ""

    Accessible.role: Accessible.Graphic
    Accessible.name: accessibleName
}
