#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>
#include <QStringList>

namespace quorbel::testing {

/// Faults of the layout, one line each; empty when all is well. `textScale` is the
/// text size that the desktop asks for, 1 for the one the window is drawn for. Rules:
///
/// 1. A text is shown whole, numbers above all. Only a closed box of choices may cut a name, for
///    its list shows it whole.
/// 2. Texts and controls lie inside everything that they are in; in scrolling content, inside what
///    it scrolls over. What scrolls has room for each control in it, and its bars know its size.
/// 3. Texts and controls do not lie on each other, unless one is a part of the other.
/// 4. No text is smaller than the smallest of the design, times the text scale.
/// 5. What can be operated has a name for assistive technology.
[[nodiscard]] QStringList layoutFaults(QQuickWindow &window, double textScale);

/// Goes through the window by keyboard alone: the Tab key from stop to stop, Right along what
/// scrolls sideways, Down through what scrolls downwards. Rules:
///
/// 1. The way ends where it began.
/// 2. What has the focus is seen whole.
/// 3. Every control that takes the Tab key is met, and every text is seen whole at least once. Rows
///    of lists are left out: the arrows lead through them.
[[nodiscard]] QStringList keyboardFaults(QQuickWindow &window);

} // namespace quorbel::testing
