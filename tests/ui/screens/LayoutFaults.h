#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>
#include <QStringList>

namespace quorbel::testing {

/// Returns the faults of the layout, one line each. `textScale` is the desktop's text size relative
/// to the design's. Rules:
///
/// 1. Texts are shown whole. Only a closed combo box may cut a name, which its list shows whole.
/// 2. Texts and controls lie inside all their ancestors, or inside the content of a scrolling one.
///    A scrolling area has room for each of its controls, and its scroll bars know its size.
/// 3. Texts and controls do not overlap, unless one contains the other.
/// 4. No text is smaller than the design's smallest, times `textScale`.
/// 5. Every control has a name for assistive technology.
[[nodiscard]] QStringList layoutFaults(QQuickWindow &window, double textScale);

/// Returns the faults of a walk through the window by keyboard: Tab from control to control, Right
/// through areas that scroll sideways, Down through those that scroll downwards. Rules:
///
/// 1. The walk ends where it began.
/// 2. The focused item is entirely visible.
/// 3. The walk reaches every control that takes the Tab key and shows every text at least once,
///    except in rows of lists, which the arrow keys reach.
[[nodiscard]] QStringList keyboardFaults(QQuickWindow &window);

} // namespace quorbel::testing
