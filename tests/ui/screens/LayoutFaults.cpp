#include "ui/screens/LayoutFaults.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QFont>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace quorbel::testing {

namespace {

constexpr double tolerance = 1.5;   // pixels: positions are rounded, and fractions of texts
constexpr double smallestText = 11; // Theme.captionSize
constexpr double smallestDots = 14; // seven dots of two pixels

bool isA(const QQuickItem &item, const char *type) { return item.inherits(type); }
bool isFlickable(const QQuickItem &item) { return isA(item, "QQuickFlickable"); }

double number(const QQuickItem &item, const char *property) {
    return item.property(property).toDouble();
}

bool isText(const QQuickItem &item) {
    return (isA(item, "QQuickText") || isA(item, "QQuickTextEdit") ||
            isA(item, "quorbel::DotText")) &&
           !item.property("text").toString().isEmpty();
}

bool isControl(const QQuickItem &item) {
    return isA(item, "QQuickAbstractButton") || isA(item, "QQuickComboBox") ||
           isA(item, "QQuickTextInput") || isA(item, "quorbel::ValueControl");
}

QRectF sceneRect(const QQuickItem &item) {
    return item.mapRectToScene(QRectF(0, 0, item.width(), item.height()));
}

bool holds(const QRectF &outer, const QRectF &inner) {
    return outer.adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(inner);
}

/// Ancestors from the parent up.
std::vector<const QQuickItem *> ancestors(const QQuickItem &item) {
    std::vector<const QQuickItem *> list;
    for (const QQuickItem *at = item.parentItem(); at != nullptr; at = at->parentItem())
        list.push_back(at);
    return list;
}

bool isInside(const QQuickItem &item, const QQuickItem &outer) {
    const auto chain = ancestors(item);
    return std::ranges::find(chain, &outer) != chain.end();
}

/// The nearest ancestor of that type, or null.
const QQuickItem *nearest(const QQuickItem &item, const char *type) {
    for (const QQuickItem *at : ancestors(item))
        if (isA(*at, type))
            return at;
    return nullptr;
}

/// Visible part of an item, in window coordinates.
QRectF shownRect(const QQuickItem &item) {
    QRectF rect = sceneRect(item);
    for (const QQuickItem *at : ancestors(item))
        if (at->clip() || at->parentItem() == nullptr)
            rect &= sceneRect(*at);
    return rect;
}

void eachShown(QQuickItem &item, const std::function<void(QQuickItem &)> &visit) {
    if (!item.isVisible() || item.opacity() == 0)
        return;
    visit(item);
    for (QQuickItem *child : item.childItems())
        eachShown(*child, visit);
}

std::vector<QQuickItem *> subjects(QQuickWindow &window) {
    std::vector<QQuickItem *> list;
    eachShown(*window.contentItem(), [&](QQuickItem &item) {
        if (isText(item) || isControl(item))
            list.push_back(&item);
    });
    return list;
}

QString accessibleName(const QQuickItem &item) {
    auto *object = QAccessible::queryAccessibleInterface(const_cast<QQuickItem *>(&item));
    return object != nullptr ? object->text(QAccessible::Name) : QString();
}

/// Name for assistive technology; a value control has it on its handle.
QString nameOf(const QQuickItem &item) {
    if (isText(item))
        return '"' + item.property("text").toString().left(40) + '"';
    const QString own = item.property("accessibleName").toString();
    return own.isEmpty() ? accessibleName(item) : own;
}

QString describe(const QQuickItem &item) {
    const QString type = QString::fromLatin1(item.metaObject()->className()).section("_QML", 0, 0);
    const QRectF rect = sceneRect(item);
    return QStringLiteral("%1 %2 at %3,%4 %5x%6")
        .arg(type.section("::", -1), nameOf(item))
        .arg(std::lround(rect.x()))
        .arg(std::lround(rect.y()))
        .arg(std::lround(rect.width()))
        .arg(std::lround(rect.height()));
}

/// Rule 1: the text's fault; empty if it is shown whole.
QString cutPart(const QQuickItem &item) {
    if (isA(item, "quorbel::DotText")) {
        const bool isCut = item.implicitWidth() > item.width() + tolerance ||
                           item.implicitHeight() > item.height() + tolerance;
        return isCut ? "cut" : QString();
    }
    if (item.property("truncated").toBool())
        return nearest(item, "QQuickComboBox") != nullptr ? QString() : "elided";
    const double across = item.width() - number(item, "leftPadding") - number(item, "rightPadding");
    if (number(item, "contentWidth") > across + tolerance)
        return "too narrow";
    if (number(item, "contentHeight") > item.height() + tolerance)
        return "too low";
    return {};
}

/// Rule 2: the ancestor that does not contain the item, or null.
const QQuickItem *leftAncestor(const QQuickItem &item) {
    const QRectF rect = sceneRect(item);
    if (rect.isEmpty())
        return nullptr;
    for (const QQuickItem *at : ancestors(item)) {
        const QQuickItem *parent = at->parentItem();
        if (parent != nullptr && isFlickable(*parent) &&
            parent->property("contentItem").value<QQuickItem *>() == at) {
            const QRectF content(0, 0, std::max(parent->width(), number(*parent, "contentWidth")),
                                 std::max(parent->height(), number(*parent, "contentHeight")));
            // A list's height is an estimate until all rows exist.
            const bool fits = holds(at->mapRectToScene(content), rect);
            return fits || isA(*parent, "QQuickListView") ? nullptr : at;
        }
        if (at->width() > 0 && at->height() > 0 && !holds(sceneRect(*at), rect))
            return at;
    }
    return nullptr;
}

void findCrowding(const QQuickItem &control, QStringList &faults) {
    for (const QQuickItem *at : ancestors(control))
        if (isFlickable(*at) && (control.height() > at->height() + tolerance ||
                                 control.width() > at->width() + tolerance))
            faults.append("no room to show " + describe(control) + " in " + describe(*at));
}

bool overlap(const QQuickItem &one, const QQuickItem &other) {
    if (isInside(one, other) || isInside(other, one))
        return false;
    if (nearest(one, "QQuickPopupItem") != nearest(other, "QQuickPopupItem"))
        return false; // a popup lies on the window
    const bool scrollTogether =
        nearest(one, "QQuickFlickable") == nearest(other, "QQuickFlickable");
    const QRectF both =
        scrollTogether ? sceneRect(one) & sceneRect(other) : shownRect(one) & shownRect(other);
    return both.width() > tolerance && both.height() > tolerance;
}

} // namespace

QStringList layoutFaults(QQuickWindow &window, double textScale) {
    QStringList faults;
    const auto all = subjects(window);
    for (const QQuickItem *item : all) {
        if (isText(*item) || isA(*item, "QQuickTextInput")) {
            const QString cut = cutPart(*item);
            if (!cut.isEmpty())
                faults.append(cut + ": " + describe(*item));
            const bool isSmall = isA(*item, "quorbel::DotText")
                                     ? item->implicitHeight() < smallestDots * textScale - 1
                                     : item->property("font").value<QFont>().pixelSize() <
                                           std::floor(smallestText * textScale);
            if (isSmall)
                faults.append("small: " + describe(*item));
        }
        if (isControl(*item)) {
            findCrowding(*item, faults);
            if (nameOf(*item).isEmpty())
                faults.append("no name: " + describe(*item));
        }
        if (const QQuickItem *left = leftAncestor(*item))
            faults.append("outside: " + describe(*item) + " of " + describe(*left));
    }
    eachShown(*window.contentItem(), [&](QQuickItem &item) {
        if (const QQuickItem *left = isFlickable(item) ? leftAncestor(item) : nullptr)
            faults.append("outside: " + describe(item) + " of " + describe(*left));
        if (isA(item, "QQuickScrollBar") && item.height() > 0 && number(item, "size") <= 0)
            faults.append("scroll bar of nothing: " + describe(item));
    });
    for (std::size_t one = 0; one < all.size(); ++one)
        for (std::size_t other = one + 1; other < all.size(); ++other)
            if (overlap(*all[one], *all[other]))
                faults.append("overlap: " + describe(*all[one]) + " and " + describe(*all[other]));
    return faults;
}

namespace {

class KeyboardWalk {
  public:
    explicit KeyboardWalk(QQuickWindow &window) : window_(window) {}

    QStringList faults() {
        eachShown(*window_.contentItem(), [](QQuickItem &item) {
            if (isFlickable(item)) {
                item.setProperty("contentX", item.property("originX"));
                item.setProperty("contentY", item.property("originY"));
            }
        });
        press(Qt::Key_Tab);
        const QQuickItem *first = window_.activeFocusItem();
        for (int stops = 0; stops == 0 || window_.activeFocusItem() != first; ++stops) {
            constexpr int mostStops = 200;
            if (stops == mostStops || window_.activeFocusItem() == nullptr)
                return {"the way of the Tab key does not end"};
            visit();
            press(Qt::Key_Tab);
        }
        for (const QQuickItem *item : subjects(window_)) {
            const QQuickItem *list = nearest(*item, "QQuickListView");
            if (list != nullptr || !item->isEnabled())
                continue;
            if (item->activeFocusOnTab() && !visited_.contains(item))
                faults_.append("not on the way of the Tab key: " + describe(*item));
            const QQuickItem *view = nearest(*item, "QQuickFlickable");
            const bool isLarge = view != nullptr && item->height() > 0.8 * view->height();
            if (isText(*item) && !isLarge && !seen_.contains(item))
                faults_.append("never seen: " + describe(*item));
        }
        return faults_;
    }

  private:
    void press(Qt::Key key) {
        QTest::keyClick(&window_, key);
        QCoreApplication::processEvents();
        for (const QQuickItem *item : subjects(window_))
            if (holds(shownRect(*item), sceneRect(*item)))
                seen_.insert(item);
    }

    void visit() {
        const QQuickItem &item = *window_.activeFocusItem();
        visited_.insert(&item);
        const QQuickItem *flickable = nearest(item, "QQuickFlickable");
        const bool isLarge = flickable != nullptr && item.height() > flickable->height();
        if (!isLarge && !holds(shownRect(item), sceneRect(item)))
            faults_.append("focus out of view: " + describe(item));
        if (flickable != nullptr &&
            number(*flickable, "contentWidth") > flickable->width() + tolerance)
            leadAlong();
        const QQuickItem *view = item.parentItem();
        if (view != nullptr && isA(*view, "QQuickScrollView"))
            scrollThrough(*view->property("contentItem").value<QQuickItem *>());
    }

    void leadAlong() {
        std::vector<const QQuickItem *> met;
        do {
            met.push_back(window_.activeFocusItem());
            press(Qt::Key_Right);
        } while (window_.activeFocusItem() != met.back());
        for (std::size_t back = 1; back < met.size(); ++back)
            press(Qt::Key_Left);
    }

    void scrollThrough(const QQuickItem &flickable) {
        double before = -1;
        while (before != number(flickable, "contentY")) {
            before = number(flickable, "contentY");
            press(Qt::Key_Down);
        }
        press(Qt::Key_Home);
    }

    QQuickWindow &window_;
    QSet<const QQuickItem *> visited_;
    QSet<const QQuickItem *> seen_;
    QStringList faults_;
};

} // namespace

QStringList keyboardFaults(QQuickWindow &window) { return KeyboardWalk(window).faults(); }

} // namespace quorbel::testing
