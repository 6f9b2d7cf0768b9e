#include "ui/dotmatrix/WrapRow.h"

#include <QtQml/qqml.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorbel {
namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();
constexpr double rounding = 0.01; // widths of texts are sums of fractions

} // namespace

struct WrapRow::Cell {
    QQuickItem *item = nullptr;
    double narrowest = 0;
    double widest = 0;
    bool trailing = false;
    double width = 0;
};

WrapRow::WrapRow(QQuickItem *parent) : QQuickItem(parent) {
    connect(this, &WrapRow::changed, this, &WrapRow::arrange);
}

WrapRowAttached *WrapRow::qmlAttachedProperties(QObject *child) {
    auto *attached = new WrapRowAttached(child);
    if (auto *item = qobject_cast<QQuickItem *>(child)) {
        connect(attached, &WrapRowAttached::changed, item, [item] {
            if (auto *row = qobject_cast<WrapRow *>(item->parentItem()))
                row->arrange();
        });
    }
    return attached;
}

void WrapRow::itemChange(ItemChange change, const ItemChangeData &data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemChildAddedChange) {
        for (const auto signal : {&QQuickItem::implicitWidthChanged, &QQuickItem::heightChanged,
                                  &QQuickItem::visibleChanged})
            connect(data.item, signal, this, &WrapRow::arrange);
        arrange();
    } else if (change == ItemChildRemovedChange) {
        disconnect(data.item, nullptr, this, nullptr);
        arrange();
    }
}

void WrapRow::geometryChange(const QRectF &now, const QRectF &before) {
    QQuickItem::geometryChange(now, before);
    if (now.width() != before.width())
        arrange();
}

void WrapRow::componentComplete() {
    QQuickItem::componentComplete();
    arrange();
}

// Arranges immediately, not in the next frame, so that a surrounding layout gets the new height in
// its own pass.
void WrapRow::arrange() {
    if (!isComponentComplete() || isArranging_) {
        isStale_ = true;
        return;
    }
    isArranging_ = true;
    // Repeats because heights depend on widths; leaves children that do not settle as they are.
    constexpr int mostRounds = 3;
    int rounds = 0;
    do {
        isStale_ = false;
        arrangeOnce();
    } while (isStale_ && ++rounds < mostRounds);
    isArranging_ = false;
}

std::vector<WrapRow::Cell> WrapRow::cells() const {
    std::vector<Cell> list;
    for (QQuickItem *item : childItems()) {
        const auto *asked =
            qobject_cast<WrapRowAttached *>(qmlAttachedPropertiesObject<WrapRow>(item, false));
        const bool fills = asked != nullptr && asked->fills;
        // Skips hidden children and items without a size, such as repeaters.
        if (!item->isVisible() || (item->implicitWidth() <= 0 && !fills))
            continue;
        Cell cell{.item = item, .narrowest = item->implicitWidth()};
        if (asked != nullptr && asked->minimumWidth >= 0)
            cell.narrowest = asked->minimumWidth;
        cell.widest = std::max(cell.narrowest, item->implicitWidth());
        if (fills)
            // NOLINTNEXTLINE(*-narrowing-conversions): takes infinity for a narrowed constant
            cell.widest = asked->maximumWidth >= 0 ? asked->maximumWidth : unlimited;
        cell.trailing = asked != nullptr && asked->trailing;
        list.push_back(cell);
    }
    return list;
}

void WrapRow::arrangeOnce() {
    auto list = cells();
    double natural = 0;
    for (const Cell &cell : list)
        natural += std::max(cell.narrowest, cell.item->implicitWidth());
    setImplicitWidth(natural + spacing_ * std::max(0.0, static_cast<double>(list.size()) - 1));

    double y = 0;
    for (std::size_t first = 0; first < list.size();) {
        double taken = list[first].narrowest;
        std::size_t end = first + 1;
        while (!stacked_ && end < list.size() &&
               taken + spacing_ + list[end].narrowest <= width() + rounding) {
            taken += spacing_ + list[end].narrowest;
            ++end;
        }
        y += first > 0 ? rowSpacing_ : 0;
        y += place(std::span(list).subspan(first, end - first), y);
        first = end;
    }
    setImplicitHeight(y);
}

double WrapRow::place(std::span<Cell> row, double y) const {
    double left = width() - spacing_ * static_cast<double>(row.size() - 1);
    for (Cell &cell : row) {
        cell.width = std::min(cell.narrowest, std::max(0.0, width()));
        left -= cell.width;
    }
    // Distributes the remaining width in equal shares, up to the maximum widths.
    std::vector<Cell *> growing;
    for (Cell &cell : row)
        growing.push_back(&cell);
    while (left > rounding) {
        std::erase_if(growing, [](const Cell *cell) { return cell->width >= cell->widest; });
        if (growing.empty())
            break;
        const double share = left / static_cast<double>(growing.size());
        for (Cell *cell : growing) {
            const double more = std::min(share, cell->widest - cell->width);
            cell->width += more;
            left -= more;
        }
    }
    double height = 0;
    for (const Cell &cell : row) {
        cell.item->setWidth(cell.width);
        height = std::max(height, cell.item->height());
    }
    double x = 0;
    for (std::size_t index = 0; index < row.size(); ++index) {
        const Cell &cell = row[index];
        if (cell.trailing && index > 0) {
            x += std::max(0.0, left);
            left = 0;
        }
        const double above = alignTop_ ? 0 : (height - cell.item->height()) / 2;
        cell.item->setPosition(QPointF(x, y + std::round(above)));
        x += cell.width + spacing_;
    }
    return height;
}

} // namespace quorbel
