#pragma once

#include <span>

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// Requests of a child of a `WrapRow`, written `WrapRow.fills: true` on the child.
class WrapRowAttached : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// The narrowest the child may become; its implicit width, unless set.
    Q_PROPERTY(double minimumWidth MEMBER minimumWidth NOTIFY changed FINAL)
    /// The widest that a child that fills may become; any width, unless set.
    Q_PROPERTY(double maximumWidth MEMBER maximumWidth NOTIFY changed FINAL)
    /// Whether the child takes the rest of its row. Others stop at their implicit width.
    Q_PROPERTY(bool fills MEMBER fills NOTIFY changed FINAL)
    /// Whether the child and those after it go to the right end, unless it begins a row.
    Q_PROPERTY(bool trailing MEMBER trailing NOTIFY changed FINAL)

  public:
    explicit WrapRowAttached(QObject *child) : QObject(child) {}

    double minimumWidth = -1;
    double maximumWidth = -1;
    bool fills = false;
    bool trailing = false;

  Q_SIGNALS:
    void changed();
};

/// Items side by side, as many as the width holds, the others in rows below. Qt's `Flow` does that
/// for items of fixed sizes; here they also share the width of their row. Items keep their own
/// heights. The implicit width is that of all items in one row.
class WrapRow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    // In full: the tools that read QML know no shorter name.
    QML_ATTACHED(quorbel::WrapRowAttached)
    /// Between the items of a row.
    Q_PROPERTY(double spacing MEMBER spacing_ NOTIFY changed FINAL)
    Q_PROPERTY(double rowSpacing MEMBER rowSpacing_ NOTIFY changed FINAL)
    /// Whether every item has a row for itself.
    Q_PROPERTY(bool stacked MEMBER stacked_ NOTIFY changed FINAL)
    /// Whether the items of a row have their upper edges in line instead of their middles.
    Q_PROPERTY(bool alignTop MEMBER alignTop_ NOTIFY changed FINAL)

  public:
    explicit WrapRow(QQuickItem *parent = nullptr);

    static WrapRowAttached *qmlAttachedProperties(QObject *child);

  Q_SIGNALS:
    void changed();

  protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void componentComplete() override;

  private:
    struct Cell;

    void arrange();
    void arrangeOnce();
    [[nodiscard]] std::vector<Cell> cells() const;
    /// Lays out one row at `y`. Returns its height.
    [[nodiscard]] double place(std::span<Cell> row, double y) const;

    double spacing_ = 0;
    double rowSpacing_ = 0;
    bool stacked_ = false;
    bool alignTop_ = false;
    bool isArranging_ = false;
    bool isStale_ = false; ///< something changed while it was being arranged
};

} // namespace quorbel
