#pragma once

#include <span>

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// Layout hints on a child of a `WrapRow`, such as `WrapRow.fills: true`.
class WrapRowAttached : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// Defaults to the implicit width.
    Q_PROPERTY(double minimumWidth MEMBER minimumWidth NOTIFY changed FINAL)
    /// Limits a child that fills; unlimited by default.
    Q_PROPERTY(double maximumWidth MEMBER maximumWidth NOTIFY changed FINAL)
    /// Whether the child takes the rest of its row; others stop at their implicit width.
    Q_PROPERTY(bool fills MEMBER fills NOTIFY changed FINAL)
    /// Moves the child and those after it to the right end, unless it begins a row.
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

/// Lays out items side by side and wraps them into rows. Unlike in Qt's `Flow`, items share the
/// width of their row. Items keep their heights. The implicit width is that of all items in one
/// row.
class WrapRow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    // Qualified: the QML tools do not resolve a shorter name.
    QML_ATTACHED(quorbel::WrapRowAttached)
    /// Gap between the items of a row.
    Q_PROPERTY(double spacing MEMBER spacing_ NOTIFY changed FINAL)
    Q_PROPERTY(double rowSpacing MEMBER rowSpacing_ NOTIFY changed FINAL)
    /// Whether every item has its own row.
    Q_PROPERTY(bool stacked MEMBER stacked_ NOTIFY changed FINAL)
    /// Whether the items of a row are aligned at their tops instead of their middles.
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
    bool isStale_ = false; ///< something changed while arranging
};

} // namespace quorbel
