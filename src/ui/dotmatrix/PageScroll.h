#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>

namespace quorbel {

/// Scrolls a page by keys: arrows by a line, Page Up and Page Down by a view, Home and End to its
/// ends. In a list that has the focus the keys move its current row instead.
class PageScroll final : public QObject {
  public:
    using QObject::QObject;

    /// Scrolls one of the parts of `page` that are higher than their frames and not at their ends:
    /// the innermost one around the focus, or else the innermost of all. Returns false without such
    /// a part, or if the key does not scroll.
    bool scroll(QQuickItem *page, int key);
    /// Stops holding a list at its end: the user moves elsewhere.
    void letGo() { framesLeft_ = 0; }

  private:
    void scrollList(QQuickItem &list, int key);
    void holdAtEnd();

    QPointer<QQuickItem> list_; ///< held at its end for as many frames
    QMetaObject::Connection frames_;
    bool isLastEnd_ = false;
    int framesLeft_ = 0;
};

} // namespace quorbel
