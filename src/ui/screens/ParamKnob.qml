import Quorbel.Dotmatrix

/// A knob that records each whole movement as one history step.
DotKnob {
    GestureArea {}
}
