import Quorbel.Dotmatrix

/// A slider whose whole movement is one step of the history.
DotSlider {
    GestureArea {}
}
