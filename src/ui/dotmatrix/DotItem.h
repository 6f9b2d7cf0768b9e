#pragma once

#include "ui/dotmatrix/Appearance.h"

#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

class DotPainter;

/// Base of items that paint dots as one picture. An item is repainted only after a change of its
/// content, and not while it or its window is hidden.
///
/// Subclasses name `quorbel::DotItem` in full: the QML tools do not resolve a shorter name.
class DotItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ANONYMOUS

  public:
    explicit DotItem(QQuickItem *parent = nullptr);

    /// Number of times the item was painted.
    [[nodiscard]] Q_INVOKABLE int paintCount() const { return paintCount_; }

    void paint(QPainter *painter) final;

  protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;

    /// Schedules painting for the next frame, or for the first one in which the item is visible.
    void repaint();

    /// @param size  the item's size in device pixels
    virtual void paintDots(DotPainter &painter, QSize size) = 0;

    /// Drops cached pictures; called after a change of colours, size or scale.
    virtual void dropPictures() {}

    static const Palette &palette() { return Appearance::instance().palette(); }

    /// Assigns a property and schedules painting if the value differs.
    /// @returns whether it differs
    template <class T> bool take(T &member, const T &value) {
        if (member == value)
            return false;
        member = value;
        repaint();
        return true;
    }

  private:
    int paintCount_ = 0;
    bool stale_ = false; // to be painted once it is visible
    QSize paintedSize_;
};

} // namespace quorbel
