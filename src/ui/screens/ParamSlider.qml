import Quorbel.Dotmatrix

/// A slider that records each whole movement as one history step.
DotSlider {
    GestureArea {}
}
