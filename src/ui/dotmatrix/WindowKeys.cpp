#include "ui/dotmatrix/WindowKeys.h"

#include "ui/dotmatrix/FocusArea.h"

#include <QCoreApplication>
#include <QQuickWindow>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <utility>

namespace quorbel {

namespace {

/// Scan codes of X11 and Wayland: those of the kernel (linux/input-event-codes.h) plus 8.
constexpr quint32 scanCode1 = 2 + 8;
struct Letter {
    int key;
    quint32 scanCode;
};
constexpr std::array letters{Letter{Qt::Key_Q, 16 + 8}, Letter{Qt::Key_Y, 21 + 8},
                             Letter{Qt::Key_Z, 44 + 8}, Letter{Qt::Key_B, 48 + 8}};

Qt::KeyboardModifiers modifiersOf(const QKeyEvent &key) {
    return key.modifiers() & ~Qt::KeypadModifier;
}

bool isReturn(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

/// Returns whether the character is unknown or not Latin, such as Cyrillic or Greek.
bool isOfOtherScript(int key) {
    constexpr int firstAfterLatin = 0x250;
    return key == 0 || key == Qt::Key_unknown || (key >= firstAfterLatin && key < Qt::Key_Escape);
}

/// Returns the key's code, or that of the Latin letter at its position on a non-Latin layout.
int codeOf(const QKeyEvent &key) {
    if (!isOfOtherScript(key.key()))
        return key.key();
    const auto *letter = std::ranges::find(letters, key.nativeScanCode(), &Letter::scanCode);
    return letter != letters.end() ? letter->key : key.key();
}

bool isCompareKey(const QKeyEvent &key) {
    return codeOf(key) == Qt::Key_B && modifiersOf(key) == Qt::NoModifier;
}

/// Compares by class name: Qt has no public classes for its control templates.
bool isA(const QQuickItem *item, const char *kind) {
    return item != nullptr && item->inherits(kind);
}
bool isButton(const QQuickItem *item) { return isA(item, "QQuickAbstractButton"); }
bool isBox(const QQuickItem *item) { return isA(item, "QQuickComboBox"); }
bool isOpenBox(const QQuickItem *item) {
    if (!isBox(item))
        return false;
    const auto *popup = item->property("popup").value<QObject *>();
    return popup != nullptr && popup->property("visible").toBool();
}
bool isPressable(const QQuickItem *item) {
    return isButton(item) || (isBox(item) && !isOpenBox(item));
}
/// Returns whether the item is an editable text; read-only texts accept no input.
bool isWritten(const QQuickItem *item) {
    return item != nullptr && item->flags().testFlag(QQuickItem::ItemAcceptsInputMethod);
}

} // namespace

struct WindowKeys::Shortcut {
    int key;
    Qt::KeyboardModifiers modifiers;
    Request request;
    bool repeats = false;
    int index = 0;
};

WindowKeys::WindowKeys(QQuickItem *parent) : QQuickItem(parent) { setFlag(ItemIsFocusScope); }

bool WindowKeys::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::KeyPress: {
        scroll_.letGo();
        const auto &key = *static_cast<QKeyEvent *>(event);
        const bool isKept = press(key);
        if (isKept)
            kept_.insert(key.key());
        else
            kept_.remove(key.key());
        return isKept;
    }
    case QEvent::KeyRelease:
        return release(*static_cast<QKeyEvent *>(event));
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
        pressedAt(static_cast<QPointerEvent *>(event)->point(0).position());
        break;
    case QEvent::MouseMove:
        wheelIsAssigned_ = false;
        break;
    case QEvent::Wheel:
        scroll_.letGo();
        assignWheel(static_cast<QWheelEvent *>(event)->position());
        break;
    default:
        break;
    }
    return QQuickItem::eventFilter(watched, event);
}

void WindowKeys::itemChange(ItemChange change, const ItemChangeData &data) {
    if (change == ItemSceneChange && data.window != nullptr) {
        data.window->installEventFilter(this);
        connect(data.window, &QQuickWindow::activeFocusItemChanged, this, &WindowKeys::followFocus);
        // The release of a held key goes to the newly active window.
        connect(data.window, &QWindow::activeChanged, this, [this] {
            if (window() != nullptr && !window()->isActive())
                setCompareHeld(false);
        });
    }
    QQuickItem::itemChange(change, data);
}

WindowKeys::Shortcut WindowKeys::shortcutOf(const QKeyEvent &key) {
    static constexpr std::array shortcuts{
        Shortcut{Qt::Key_Z, Qt::ControlModifier, Request::undo, true},
        Shortcut{Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier, Request::redo, true},
        Shortcut{Qt::Key_Y, Qt::ControlModifier, Request::redo, true},
        Shortcut{Qt::Key_Q, Qt::ControlModifier, Request::quit},
        Shortcut{Qt::Key_F5, Qt::NoModifier, Request::refresh},
        Shortcut{Qt::Key_Return, Qt::ControlModifier, Request::startStop},
        Shortcut{Qt::Key_Enter, Qt::ControlModifier, Request::startStop},
    };
    const int code = codeOf(key);
    const Qt::KeyboardModifiers modifiers = modifiersOf(key);
    const auto *found = std::ranges::find_if(shortcuts, [&](const Shortcut &shortcut) {
        return shortcut.key == code && shortcut.modifiers == modifiers;
    });
    if (found != shortcuts.end())
        return *found;
    Shortcut shortcut{code, modifiers, Request::none};
    if (modifiers == Qt::ControlModifier) {
        // Layouts with shifted digits keep them on the same keys, 0 after 9.
        const bool isDigit = code >= Qt::Key_0 && code <= Qt::Key_9;
        shortcut.index = isDigit
                             ? (code - Qt::Key_1 + 10) % 10
                             : static_cast<int>(key.nativeScanCode()) - static_cast<int>(scanCode1);
        if (shortcut.index >= 0 && shortcut.index < 10)
            shortcut.request = Request::screen;
    }
    return shortcut;
}

bool WindowKeys::press(const QKeyEvent &key) {
    QQuickItem *const item = focused();
    const bool isText = isWritten(item);
    if (isCompareKey(key) && !isText) {
        if (!key.isAutoRepeat()) {
            compareKey_ = key.key();
            compareScanCode_ = key.nativeScanCode();
            setCompareHeld(true);
        }
        return true;
    }
    if (const Shortcut shortcut = shortcutOf(key); shortcut.request != Request::none)
        return (key.isAutoRepeat() && !shortcut.repeats) || request(shortcut);
    if (isText)
        return false;
    const bool isDelete = key.key() == Qt::Key_Delete || key.key() == Qt::Key_Backspace;
    if (modifiersOf(key) == Qt::NoModifier) {
        if (key.isAutoRepeat() && (isReturn(key.key()) || isDelete))
            return true;
        if (isReturn(key.key()) && isPressable(item)) {
            spaceOn_ = item;
            sendSpace(QEvent::KeyPress);
            return true;
        }
    }
    if (isDelete && isButton(item))
        return true;
    const QString text = key.text();
    return isBox(item) && !isOpenBox(item) && key.key() != Qt::Key_Space && !text.isEmpty() &&
           text.front().isPrint();
}

bool WindowKeys::release(const QKeyEvent &key) {
    if (compareHeld_ && (key.key() == compareKey_ ||
                         (key.nativeScanCode() != 0 && key.nativeScanCode() == compareScanCode_))) {
        if (!key.isAutoRepeat())
            setCompareHeld(false);
        return true;
    }
    QQuickItem *const item = focused();
    if (isReturn(key.key()) && !key.isAutoRepeat()) {
        // Releases only the pressed item: the focus may have moved in between.
        const QQuickItem *const pressed = std::exchange(spaceOn_, nullptr);
        if (pressed != nullptr && pressed == item)
            sendSpace(QEvent::KeyRelease);
        else if (isPressable(item))
            return true;
    }
    return key.isAutoRepeat() ? kept_.contains(key.key()) : kept_.remove(key.key());
}

bool WindowKeys::request(const Shortcut &shortcut) {
    QQuickItem *const item = focused();
    const bool isUndo = shortcut.request == Request::undo;
    if (isUndo || shortcut.request == Request::redo) {
        if (isWritten(item) && item->property(isUndo ? "canUndo" : "canRedo").toBool()) {
            QMetaObject::invokeMethod(item, isUndo ? "undo" : "redo");
            return true;
        }
    }
    if (shortcut.request == Request::quit) {
        Q_EMIT quitRequested();
        return true;
    }
    if (isInDialog(item))
        return true;
    switch (shortcut.request) {
    case Request::undo:
        Q_EMIT undoRequested();
        break;
    case Request::redo:
        Q_EMIT redoRequested();
        break;
    case Request::refresh:
        Q_EMIT refreshRequested();
        break;
    case Request::startStop:
        Q_EMIT startStopRequested();
        break;
    case Request::screen:
        if (isWritten(item))
            item->setFocus(false, Qt::ShortcutFocusReason); // commits the typed value
        Q_EMIT screenRequested(shortcut.index);
        break;
    default:
        break;
    }
    return true;
}

void WindowKeys::sendSpace(QEvent::Type type) const {
    QKeyEvent space(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    QCoreApplication::sendEvent(window(), &space);
}

void WindowKeys::setCompareHeld(bool held) {
    if (compareHeld_ != held) {
        compareHeld_ = held;
        Q_EMIT compareHeldChanged();
    }
}

void WindowKeys::keyPressEvent(QKeyEvent *event) {
    QQuickItem *const item = focused();
    const int key = event->key();
    event->ignore();
    if (modifiersOf(*event) != Qt::NoModifier)
        return;
    if (isWritten(item) && (isReturn(key) || key == Qt::Key_Escape)) {
        giveBack(item);
        event->accept();
    } else {
        event->setAccepted(scroll_.scroll(page_, key));
    }
}

QQuickItem *WindowKeys::focused() const {
    return window() != nullptr ? window()->activeFocusItem() : nullptr;
}

bool WindowKeys::isInDialog(const QQuickItem *item) const {
    return item != nullptr && item != window()->contentItem() && item != this &&
           !isAncestorOf(item);
}

void WindowKeys::followFocus() {
    QQuickItem *const item = focused();
    if (item != nullptr && !isWritten(item) && !isInDialog(item))
        beforeField_ = item;
}

void WindowKeys::giveBack(QQuickItem *field) {
    const auto reason = static_cast<Qt::FocusReason>(field->property("focusReason").toInt());
    const bool cameByKeys = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    const QPointer<QQuickItem> before = beforeField_;
    field->setFocus(false, Qt::OtherFocusReason);
    // Gives no control the focus if a click led to the field: a second Return would press the last
    // button, and the equaliser would select another band.
    if (cameByKeys && before != nullptr && before->isVisible() && before->isEnabled() &&
        isAncestorOf(before))
        before->forceActiveFocus(Qt::TabFocusReason);
}

void WindowKeys::pressedAt(QPointF place) {
    wheelIsAssigned_ = false;
    QQuickItem *const item = focused();
    if (isWritten(item) && !isInDialog(item) && !item->contains(item->mapFromScene(place)))
        item->setFocus(false, Qt::MouseFocusReason);
}

void WindowKeys::assignWheel(QPointF place) {
    if (wheelIsAssigned_)
        return;
    // Decides only once: a scrolling page moves other controls under the resting pointer.
    wheelIsAssigned_ = true;
    if (auto *const area = qobject_cast<FocusArea *>(focused()))
        area->setTakesWheel(area->contains(area->mapFromScene(place)));
}

} // namespace quorbel
