#include "ui/dotmatrix/DotBars.h"

#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

DotBars::DotBars(QQuickItem *parent) : DotItem(parent) {
    setImplicitSize(columns_ * 8.0, rows_ * 8.0);
    light();
}

void DotBars::setLevels(const QList<double> &levels) {
    levels_ = levels;
    light();
    Q_EMIT levelsChanged();
}

void DotBars::setColumns(int columns) {
    if (take(columns_, std::max(1, columns)))
        Q_EMIT columnsChanged();
    setImplicitWidth(columns_ * 8.0);
    dropPictures();
    light();
}

void DotBars::setRows(int rows) {
    if (take(rows_, std::max(1, rows)))
        Q_EMIT rowsChanged();
    setImplicitHeight(rows_ * 8.0);
    dropPictures();
    light();
}

void DotBars::setActive(bool active) {
    if (active_ != active) {
        active_ = active;
        light();
        Q_EMIT activeChanged();
    }
}

// Levels arrive 30 times a second: repaints only if the number of lit dots changes.
void DotBars::light() {
    std::vector<int> lit(static_cast<std::size_t>(columns_), 0);
    if (active_) {
        const auto count = std::min(lit.size(), static_cast<std::size_t>(levels_.size()));
        for (std::size_t column = 0; column < count; ++column) {
            const double level = levels_[static_cast<qsizetype>(column)];
            if (level > 0) // false for NaN
                lit[column] = static_cast<int>(std::lround(std::min(level, 1.0) * rows_));
        }
    }
    if (lit != lit_) {
        lit_ = std::move(lit);
        repaint();
    }
}

void DotBars::dropPictures() { pictures_ = {}; }

void DotBars::makePictures(QSize size) {
    auto &made = pictures_;
    made.columnPitch = std::max(1, size.width() / columns_);
    made.rowPitch = std::max(1, size.height() / rows_);
    const int pitch = std::min(made.columnPitch, made.rowPitch);
    const int fitting = made.columnPitch / pitch;
    const int across = fitting >= 3 ? fitting - 1 : fitting;
    const DotLattice column{.cells = {across, rows_},
                            .pitch = {pitch, made.rowPitch},
                            .diameter = std::max(1, static_cast<int>(std::lround(pitch * 0.625)))};
    made.columnWidth = column.size().width();
    made.lit = dotSheet(column, palette().ink);
    made.top = dotSheet(column, palette().signal);

    const QPixmap dark = dotSheet(column, palette().dot);
    made.dark = QPixmap(size);
    made.dark.fill(Qt::transparent);
    QPainter painter(&made.dark);
    for (int index = 0; index < columns_; ++index)
        painter.drawPixmap(index * made.columnPitch, 0, dark);
}

void DotBars::paintDots(DotPainter &painter, QSize size) {
    if (size.isEmpty())
        return;
    if (pictures_.dark.isNull())
        makePictures(size);
    const auto &made = pictures_;
    painter->drawPixmap(0, 0, made.dark);
    for (int column = 0; column < columns_; ++column) {
        const int count = lit_[static_cast<std::size_t>(column)];
        if (count == 0)
            continue;
        const int x = column * made.columnPitch;
        const int top = (rows_ - count) * made.rowPitch;
        const int below = top + made.rowPitch;
        painter->drawPixmap(x, top, made.top, 0, top, made.columnWidth, made.rowPitch);
        painter->drawPixmap(x, below, made.lit, 0, below, made.columnWidth,
                            made.lit.height() - below);
    }
}

} // namespace quorbel
