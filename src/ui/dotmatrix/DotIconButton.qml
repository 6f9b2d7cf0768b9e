import Quorbel.Dotmatrix

// A button that is a symbol only; its name is shown beside the pointer and read to assistive technology.
DotButton {
    flat: true
    help: accessibleName
}
