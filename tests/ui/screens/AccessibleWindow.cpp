#include "ui/screens/AccessibleWindow.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMetaEnum>
#include <QMimeData>
#include <QQuickItem>
#include <QUrl>

#include <functional>

namespace quorbel::testing {

namespace {

using Visit = std::function<bool(QAccessibleInterface &)>; ///< returns false to stop

bool walk(QAccessibleInterface *at, const Visit &visit) {
    if (at == nullptr || !at->isValid())
        return true;
    if (at->state().invisible && at->role() != QAccessible::Window)
        return true;
    if (!visit(*at))
        return false;
    for (int child = 0; child < at->childCount(); ++child)
        if (!walk(at->child(child), visit))
            return false;
    return true;
}

QString roleName(QAccessible::Role role) {
    return QString::fromUtf8(QMetaEnum::fromType<QAccessible::Role>().valueToKey(role));
}

QString nameOf(QAccessibleInterface &of) { return of.text(QAccessible::Name); }

/// Qt's accessibility does not report disabled items.
bool isEnabled(const QAccessibleInterface &of) {
    const auto *item = qobject_cast<const QQuickItem *>(of.object());
    return item == nullptr || item->isEnabled();
}

QVariantMap describe(QAccessibleInterface &of) {
    const QAccessible::State state = of.state();
    QVariantMap map{{"role", roleName(of.role())},
                    {"name", nameOf(of)},
                    {"description", of.text(QAccessible::Description)},
                    {"text", of.text(QAccessible::Value)},
                    {"checked", bool(state.checked)},
                    {"enabled", isEnabled(of)},
                    {"focusable", bool(state.focusable)},
                    {"focused", bool(state.focused)},
                    {"selected", bool(state.selected)}};
    if (QAccessibleTextInterface *text = of.textInterface())
        map["text"] = text->text(0, text->characterCount());
    if (QAccessibleValueInterface *value = of.valueInterface()) {
        map["value"] = value->currentValue();
        map["from"] = value->minimumValue();
        map["to"] = value->maximumValue();
    }
    return map;
}

QAccessibleInterface *lookUp(QQuickWindow *window, const QString &name, const QString &role) {
    QAccessibleInterface *found = nullptr;
    walk(QAccessible::queryAccessibleInterface(window), [&](QAccessibleInterface &at) {
        if (nameOf(at) == name && at.role() != QAccessible::Window &&
            (role.isEmpty() || roleName(at.role()) == role))
            found = &at;
        return found == nullptr;
    });
    return found;
}

void eachShownItem(const QQuickItem &item, const std::function<void(const QQuickItem &)> &visit) {
    if (!item.isVisible())
        return;
    visit(item);
    for (const QQuickItem *child : item.childItems())
        eachShownItem(*child, visit);
}

} // namespace

AccessibleWindow::AccessibleWindow() { QAccessible::setActive(true); }

QVariantList AccessibleWindow::all() const {
    QVariantList list;
    walk(QAccessible::queryAccessibleInterface(window_), [&](QAccessibleInterface &at) {
        list.append(describe(at));
        return true;
    });
    return list;
}

QStringList AccessibleWindow::names(const QString &role) const {
    QStringList list;
    for (const QVariant &entry : all())
        if (role.isEmpty() || entry.toMap()["role"] == role)
            list.append(entry.toMap()["name"].toString());
    return list;
}

QVariantMap AccessibleWindow::find(const QString &name, const QString &role) const {
    QAccessibleInterface *found = lookUp(window_, name, role);
    return found != nullptr ? describe(*found) : QVariantMap();
}

bool AccessibleWindow::press(const QString &name, const QString &role) {
    return act(name, QAccessibleActionInterface::pressAction(), role) ||
           act(name, QAccessibleActionInterface::toggleAction(), role);
}

bool AccessibleWindow::act(const QString &name, const QString &action, const QString &role) {
    QAccessibleInterface *found = lookUp(window_, name, role);
    QAccessibleActionInterface *actions = found != nullptr ? found->actionInterface() : nullptr;
    if (actions == nullptr || !isEnabled(*found) || !actions->actionNames().contains(action))
        return false;
    actions->doAction(action);
    return true;
}

bool AccessibleWindow::setValue(const QString &name, double value) {
    QAccessibleInterface *found = nullptr;
    walk(QAccessible::queryAccessibleInterface(window_), [&](QAccessibleInterface &at) {
        if (nameOf(at) == name && at.valueInterface() != nullptr)
            found = &at;
        return found == nullptr;
    });
    if (found == nullptr)
        return false;
    found->valueInterface()->setCurrentValue(value);
    return true;
}

bool AccessibleWindow::focus(const QString &name, const QString &role) {
    QQuickItem *at = item(name, role);
    if (at == nullptr)
        return false;
    at->forceActiveFocus(Qt::TabFocusReason);
    return at->hasActiveFocus();
}

void AccessibleWindow::sendKey(int key, int modifiers, int scanCode, bool isDown) {
    const Qt::KeyboardModifiers held(modifiers);
    QString text;
    if (key < Qt::Key_Escape)
        text = held & Qt::ControlModifier ? QChar(key & 0x1F) : QChar(key);
    if (!(held & Qt::ShiftModifier))
        text = text.toLower();
    QKeyEvent event(isDown ? QEvent::KeyPress : QEvent::KeyRelease, key, held,
                    static_cast<quint32>(scanCode), 0, 0, text);
    QCoreApplication::sendEvent(window_, &event);
}

void AccessibleWindow::repeatKey(int key) {
    for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(window_, &event);
    }
}

QQuickItem *AccessibleWindow::item(const QString &name, const QString &role) const {
    QAccessibleInterface *found = lookUp(window_, name, role);
    return found != nullptr ? qobject_cast<QQuickItem *>(found->object()) : nullptr;
}

QStringList AccessibleWindow::textsReadAsMarkup() const {
    QStringList list;
    eachShownItem(*window_->contentItem(), [&](const QQuickItem &item) {
        const QString text = item.property("text").toString();
        // An item under construction has neither text nor format yet.
        if (item.inherits("QQuickText") && !text.isEmpty() &&
            item.property("textFormat").toInt() != Qt::PlainText)
            list.append(text);
    });
    return list;
}

bool AccessibleWindow::drop(const QStringList &paths) {
    QMimeData files;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    files.setUrls(urls);
    const QPoint middle(window_->width() / 2, window_->height() / 2);
    QDragEnterEvent enter(middle, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window_, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window_, &drop);
    return enter.isAccepted() && drop.isAccepted();
}

} // namespace quorbel::testing
