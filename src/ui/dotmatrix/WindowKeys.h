#pragma once

#include "ui/dotmatrix/PageScroll.h"

#include <QKeyEvent>
#include <QPointer>
#include <QQuickItem>
#include <QSet>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// The policy for the keyboard of a window, its wheel and its focus: the focus scope around
/// everything but the dialogs. It sees each key twice: before the focused control, and after it if
/// no control has used the key.
///
/// Before the controls:
/// 1. B, held without another key, is `compareHeld` wherever no text is written.
/// 2. The window's shortcuts are signals; in a dialog only `quitRequested` is. A layout without
///    Latin letters has them at the letters' places.
/// 3. Undo and redo go to a text field that has something to undo, and otherwise to the settings.
/// 4. Return acts like Space on buttons, switches, rows of choices, boxes.
/// 5. Return and Delete act once however long they are held, except in a text.
/// 6. Delete and Backspace on a button do nothing: otherwise a list around it would take them.
/// 7. Letters leave the choice of a closed box alone.
///
/// After the controls:
/// 8. Return and Escape take the focus from a text field. If keys led to the field, the previous
///    item gets the focus.
/// 9. Arrows, Page Up, Page Down, Home and End scroll `page`, or move in the list that has the
///    focus.
///
/// Pointer:
/// 10. A press outside of a text field takes the focus from it.
/// 11. From one movement of the pointer to the next, the wheel is for either a control or the page.
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
    /// Ctrl with a digit; 0 for 1, 9 for 0.
    void screenRequested(int index);

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

  private:
    enum class Request { none, undo, redo, quit, refresh, startStop, screen };
    struct Shortcut;

    static Shortcut shortcutOf(const QKeyEvent &key);
    /// Whether the window's controls shall not hear of the key.
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
    QPointer<QQuickItem> beforeField_; ///< had the focus before the text field that has it now
    QPointer<QQuickItem> spaceOn_;     ///< pressed by Return, which is still held
    bool compareHeld_ = false;
    int compareKey_ = 0;
    quint32 compareScanCode_ = 0;
    QSet<int> kept_; ///< keys whose press the controls have not heard of
    bool wheelIsAssigned_ = false;
    PageScroll scroll_;
};

} // namespace quorbel
