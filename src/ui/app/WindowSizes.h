#pragma once

#include <QRect>
#include <QSize>

namespace quorbel {

/// Sizes of a window's content, without its frame.
struct WindowSizes {
    QSize start;
    QSize minimum;
};

/// Returns `wanted`, each size cut to what the screen has room for beside the desktop's panels and
/// the window's frame.
///
/// `available` is the part of the screen that the desktop leaves to windows. Where it is the whole
/// screen the desktop has no panels or does not tell, as on Wayland; room for one is then left.
[[nodiscard]] WindowSizes fittedTo(const QRect &available, const QRect &whole,
                                   const WindowSizes &wanted);

} // namespace quorbel
