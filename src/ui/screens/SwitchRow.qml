import QtQuick
import QtQuick.Layouts
import Quorbel.Dotmatrix

/// A switch of a stage's controls, its label where the other rows have theirs.
DotToggle {
    required property string label

    Layout.topMargin: Theme.unit
    text: label
    accessibleName: label
}
