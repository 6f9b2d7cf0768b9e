import Quorbel.Dotmatrix

/// A knob whose whole movement is one step of the history.
DotKnob {
    GestureArea {}
}
