#include "ui/app/WindowSizes.h"

namespace quorbel {

namespace {

// Device-independent pixels. The frame's true size is known only after the window was shown; the
// title bars of common desktops are 20 to 40 high, their panels 28 to 48.
constexpr QSize frame(8, 40);
constexpr int panel = 48;

} // namespace

WindowSizes fittedTo(const QRect &available, const QRect &whole, const WindowSizes &wanted) {
    QSize room = available.size() - frame;
    if (available == whole)
        room -= QSize(0, panel);
    return {wanted.start.boundedTo(room), wanted.minimum.boundedTo(room)};
}

} // namespace quorbel
