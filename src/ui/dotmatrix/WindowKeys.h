#pragma once

#include "ui/dotmatrix/PageScroll.h"

#include <QKeyEvent>
#include <QPointer>
#include <QQuickItem>
#include <QSet>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Keyboard, wheel and focus policy of a window: the focus scope around everything but the dialogs.
/// It sees each key before the focused control, and again after it if no control used the key.
///
/// Before the controls:
/// 1. Holding B without modifiers sets `compareHeld`, except in a text field.
/// 2. Shortcuts emit signals; a dialog allows only `quitRequested`. Layouts without Latin letters
///    have them at the positions of those letters.
/// 3. Undo and redo go to a text field with something to undo, and otherwise to the settings.
/// 4. Return acts like Space on buttons, switches, rows of choices and closed boxes.
/// 5. Return and Delete do not repeat while they are held, except in a text field.
/// 6. Delete and Backspace do nothing on a button; otherwise a list around it would take them.
/// 7. Letters do not change the choice of a closed box.
///
/// After the controls:
/// 8. Return and Escape take the focus from a text field. The previous item gets the focus if the
///    Tab key led to the field.
/// 9. Arrows, Page Up, Page Down, Home and End scroll `page`, or move in the focused list.
///
/// Pointer:
/// 10. A press outside a text field takes the focus from it.
/// 11. The wheel keeps its target, a control or the page, until the pointer moves.
class WindowKeys : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool compareHeld READ compareHeld NOTIFY compareHeldChanged FINAL)
    Q_PROPERTY(QQuickItem *page MEMBER page_ NOTIFY pageChanged FINAL)

  public:
    explicit WindowKeys(QQuickItem *parent = nullptr);

    [[nodiscard]] bool compareHeld() const { return compareHeld_; }

    bool eventFilter(QObject *watched, QEvent *event) override;

  Q_SIGNALS:
    void compareHeldChanged();
    void pageChanged();
    void undoRequested();
    void redoRequested();
    void quitRequested();
    void refreshRequested();
    void startStopRequested();
    /// Ctrl with a digit: index 0 for the key 1, 9 for the key 0.
    void screenRequested(int index);

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

  private:
    enum class Request { none, undo, redo, quit, refresh, startStop, screen };
    struct Shortcut;

    static Shortcut shortcutOf(const QKeyEvent &key);
    /// Handles a key before the controls; true hides it from them.
    bool press(const QKeyEvent &key);
    bool release(const QKeyEvent &key);
    bool request(const Shortcut &shortcut);
    void sendSpace(QEvent::Type type) const;
    void setCompareHeld(bool held);

    [[nodiscard]] QQuickItem *focused() const;
    [[nodiscard]] bool isInDialog(const QQuickItem *item) const;
    void followFocus();
    void giveBack(QQuickItem *field);
    void pressedAt(QPointF place);
    void assignWheel(QPointF place);

    QQuickItem *page_ = nullptr;
    QPointer<QQuickItem> beforeField_; ///< had the focus before the text field
    QPointer<QQuickItem> spaceOn_;     ///< pressed by Return, which is still held
    bool compareHeld_ = false;
    int compareKey_ = 0;
    quint32 compareScanCode_ = 0;
    QSet<int> kept_; ///< keys with presses hidden from the controls
    bool wheelIsAssigned_ = false;
    PageScroll scroll_;
};

} // namespace quorbel
