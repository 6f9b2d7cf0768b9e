#include "ui/dotmatrix/PageScroll.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorbel {

namespace {

constexpr double lineHeight = 64; // pixels
/// A list lays out its last rows frame by frame and only estimates its end meanwhile. Positioned
/// once, the list of presets stopped above its last row in two of three runs.
constexpr int framesUntilLaidOut = 10;

bool isScrollKey(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
           key == Qt::Key_PageDown || key == Qt::Key_Home || key == Qt::Key_End;
}

/// Returns the position after a scroll key, limited to `first` and `last`.
double movedBy(int key, double now, double line, double page, double first, double last) {
    switch (key) {
    case Qt::Key_Up:
        now -= line;
        break;
    case Qt::Key_Down:
        now += line;
        break;
    case Qt::Key_PageUp:
        now -= page;
        break;
    case Qt::Key_PageDown:
        now += page;
        break;
    case Qt::Key_Home:
        return first;
    case Qt::Key_End:
        return last;
    default:
        break;
    }
    return std::clamp(now, first, std::max(first, last));
}

double number(const QQuickItem &item, const char *property) {
    return item.property(property).toDouble();
}

/// Adds the parts of `item` that scroll, the innermost first.
void addScrollableParts(QQuickItem *item, std::vector<QQuickItem *> &parts) {
    if (item == nullptr || !item->isVisible())
        return;
    for (QQuickItem *child : item->childItems())
        addScrollableParts(child, parts);
    // Qt has no public class for flickable items.
    if (item->inherits("QQuickFlickable") && number(*item, "contentHeight") > item->height() + 1)
        parts.push_back(item);
}

/// Returns whether the focus is in the part or in the scroll view around it.
bool holdsFocus(const QQuickItem *part) {
    const QQuickItem *const around = part->parentItem();
    const bool isOfView = around != nullptr && around->inherits("QQuickScrollView");
    const QQuickItem *const area = isOfView ? around : part;
    const QQuickItem *const focused = part->window()->activeFocusItem();
    return focused != nullptr && (focused == area || area->isAncestorOf(focused));
}

} // namespace

bool PageScroll::scroll(QQuickItem *page, int key) {
    std::vector<QQuickItem *> parts;
    if (isScrollKey(key))
        addScrollableParts(page, parts);
    std::stable_partition(parts.begin(), parts.end(), holdsFocus);
    for (QQuickItem *view : parts) {
        const bool isList = view->inherits("QQuickItemView");
        if (isList && (view->hasActiveFocus() || key == Qt::Key_Home || key == Qt::Key_End)) {
            scrollList(*view, key);
            return true;
        }
        const double first = number(*view, "originY");
        const double last = first + number(*view, "contentHeight") - view->height();
        const double now = number(*view, "contentY");
        const double next = movedBy(key, now, lineHeight, view->height() - lineHeight, first, last);
        if (std::abs(next - now) < 0.5)
            continue; // at its end: the part around it scrolls
        view->setProperty("contentY", next);
        return true;
    }
    return !parts.empty();
}

void PageScroll::scrollList(QQuickItem &list, int key) {
    if (list.hasActiveFocus()) {
        const double count = number(list, "count");
        const double shown = std::floor(list.height() * count / number(list, "contentHeight"));
        const double row =
            movedBy(key, number(list, "currentIndex"), 0, std::max(1.0, shown - 1), 0, count - 1);
        list.setProperty("currentIndex", static_cast<int>(row));
    }
    if (key != Qt::Key_Home && key != Qt::Key_End)
        return;
    list_ = &list;
    isLastEnd_ = key == Qt::Key_End;
    framesLeft_ = framesUntilLaidOut;
    disconnect(frames_);
    frames_ = connect(list.window(), &QQuickWindow::afterAnimating, this, &PageScroll::holdAtEnd);
    list.window()->update();
}

void PageScroll::holdAtEnd() {
    // After a change of screen the list leaves the window before it is deleted.
    if (list_ == nullptr || list_->window() == nullptr || framesLeft_ == 0) {
        disconnect(frames_);
        return;
    }
    --framesLeft_;
    QMetaObject::invokeMethod(list_, isLastEnd_ ? "positionViewAtEnd" : "positionViewAtBeginning");
    list_->window()->update();
}

} // namespace quorbel
