import QtQuick
import Quorbel.Dotmatrix

// A response over frequency; see DotCurveItem for the axes and the layers.
DotCurveItem {
    property string accessibleName: ""

    Accessible.role: Accessible.Graphic
    Accessible.name: accessibleName
}
