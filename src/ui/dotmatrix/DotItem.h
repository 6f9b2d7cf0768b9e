#pragma once

#include "ui/dotmatrix/Appearance.h"

#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

class DotPainter;

/// An item of dots, painted as one picture. It is painted again only after `update()`, after a
/// change of its content. It is not painted while it or its window is hidden.
///
/// Items derive from `quorbel::DotItem` in full: the tools that read QML know no shorter name.
class DotItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ANONYMOUS

  public:
    explicit DotItem(QQuickItem *parent = nullptr);

    /// How often the item was painted.
    [[nodiscard]] Q_INVOKABLE int paintCount() const { return paintCount_; }

    void paint(QPainter *painter) final;

  protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;

    /// Has the item painted in the next frame, or in the first one in which it is visible.
    void repaint();

    /// @param size  the item's size in device pixels
    virtual void paintDots(DotPainter &painter, QSize size) = 0;

    /// Called when colours or size or scale are others: pictures kept for painting are to be
    /// dropped.
    virtual void dropPictures() {}

    static const Palette &palette() { return Appearance::instance().palette(); }

    /// Takes a new value of a property and has the item painted where it differs.
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
