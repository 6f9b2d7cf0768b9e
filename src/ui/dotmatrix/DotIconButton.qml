import Quorbel.Dotmatrix

// A button with a symbol only; its name is shown as a tool tip and exposed to assistive technology.
DotButton {
    flat: true
    help: accessibleName
}
