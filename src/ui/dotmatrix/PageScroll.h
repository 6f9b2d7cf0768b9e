#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>

namespace quorbel {

/// Scrolls a page by keys: arrows by a line, Page Up and Page Down by a view, Home and End to its
/// ends. In a focused list the keys move the current row instead.
class PageScroll final : public QObject {
  public:
    using QObject::QObject;

    /// Scrolls the innermost part of `page` that overflows and is not at its end; parts around the
    /// focus come first. Returns false if no part overflows or the key does not scroll.
    bool scroll(QQuickItem *page, int key);
    /// Stops holding a list at its end, because the user moves elsewhere.
    void letGo() { framesLeft_ = 0; }

  private:
    void scrollList(QQuickItem &list, int key);
    void holdAtEnd();

    QPointer<QQuickItem> list_; ///< held at its end for `framesLeft_` frames
    QMetaObject::Connection frames_;
    bool isLastEnd_ = false;
    int framesLeft_ = 0;
};

} // namespace quorbel
