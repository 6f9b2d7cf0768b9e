#include "ui/dotmatrix/DotCurve.h"

#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorbel {
namespace {

constexpr double latticePitch = 8;
constexpr double inset = 4; // of the plot in the item
constexpr double lowestHz = 20;
constexpr double decades = 3; // up to 20 kHz
constexpr std::array<double, 10> octavesHz = {31.5, 63,   125,  250,  500,
                                              1000, 2000, 4000, 8000, 16000};

// Distances and diameters along the curves, device-independent pixels.
constexpr double latticeDot = 2;
constexpr double markDot = 3;
constexpr double fieldDot = 4;
constexpr double spectrumDot = 4;
constexpr double curveStep = 4;
constexpr double curveDot = 3.5;
constexpr double secondaryStep = 6;
constexpr double secondaryDot = 2;

/// Points at equal distances along a line.
template <class Visit> void walk(const QPolygonF &line, double step, Visit visit) {
    double left = 0; // to the next point
    for (qsizetype index = 1; index < line.size(); ++index) {
        const QPointF from = line[index - 1];
        const QPointF along = line[index] - from;
        const double length = std::hypot(along.x(), along.y());
        double at = left;
        for (; at < length; at += step) {
            visit(from + along * (at / length));
        }
        left = at - length;
    }
}

double finiteHeight(double height) {
    return std::isfinite(height) ? std::clamp(height, 0.0, 1.0) : 0.5;
}

} // namespace

/// The lattice's cells. Columns stand at whole pitches from the left edge of the plot; rows at
/// whole pitches from its middle, so that there is always one at half the height.
struct DotCurve::Lattice {
    int columns = 0;
    int rowsAbove = 0; // and as many below
    double middle = 0;

    double x(int column) const { return inset + column * latticePitch; }
    double y(int row) const { return middle - row * latticePitch; } // row 0 in the middle, upward
};

DotCurve::DotCurve(QQuickItem *parent) : DotItem(parent) {
    setImplicitSize(80 * latticePitch, 25 * latticePitch);
}

void DotCurve::setValues(const QList<double> &values) {
    if (take(values_, values)) {
        curve_ = {};
        Q_EMIT valuesChanged();
    }
}

void DotCurve::setSecondaryValues(const QList<double> &values) {
    if (take(secondaryValues_, values)) {
        curve_ = {};
        Q_EMIT secondaryValuesChanged();
    }
}

void DotCurve::setSpectrum(const QList<double> &levels) {
    spectrum_ = levels;
    light();
    Q_EMIT spectrumChanged();
}

void DotCurve::setOctaveMarks(bool show) {
    if (take(octaveMarks_, show)) {
        ground_ = {};
        Q_EMIT octaveMarksChanged();
    }
}

void DotCurve::setZeroLine(bool show) {
    if (take(zeroLine_, show)) {
        ground_ = {};
        Q_EMIT zeroLineChanged();
    }
}

double DotCurve::xOfFrequency(double hz) const {
    return inset + std::log10(hz / lowestHz) / decades * (width() - 2 * inset);
}

double DotCurve::frequencyAt(double x) const {
    return lowestHz * std::pow(10, (x - inset) / (width() - 2 * inset) * decades);
}

double DotCurve::yOfHeight(double height) const {
    return inset + (1 - height) * (this->height() - 2 * inset);
}

double DotCurve::heightAt(double y) const { return 1 - (y - inset) / (this->height() - 2 * inset); }

void DotCurve::geometryChange(const QRectF &now, const QRectF &before) {
    DotItem::geometryChange(now, before);
    light();
}

DotCurve::Lattice DotCurve::lattice() const {
    return {.columns = std::max(0, static_cast<int>((width() - 2 * inset) / latticePitch) + 1),
            .rowsAbove = std::max(0, static_cast<int>((height() / 2 - inset) / latticePitch)),
            .middle = height() / 2};
}

// Levels arrive thirty times a second; only those that light another number of dots are a change.
void DotCurve::light() {
    const Lattice cells = lattice();
    std::vector<int> lit(static_cast<std::size_t>(cells.columns), 0);
    const auto bands = static_cast<int>(spectrum_.size());
    const int rows = 2 * cells.rowsAbove + 1;
    for (int column = 0; column < cells.columns && bands > 0; ++column) {
        const double position = column * latticePitch / std::max(1.0, width() - 2 * inset);
        const int band = std::clamp(static_cast<int>(position * bands), 0, bands - 1);
        const double level = spectrum_[band];
        if (level > 0) { // false for what is not a number
            lit[static_cast<std::size_t>(column)] =
                static_cast<int>(std::lround(std::min(level, 1.0) * rows));
        }
    }
    if (lit != lit_) {
        lit_ = std::move(lit);
        repaint();
    }
}

void DotCurve::dropPictures() {
    ground_ = {};
    behind_ = {};
    curve_ = {};
}

QPolygonF DotCurve::points(const QList<double> &heights) const {
    QPolygonF line;
    const double last = static_cast<double>(std::max<qsizetype>(1, heights.size() - 1));
    for (qsizetype index = 0; index < heights.size(); ++index) {
        const double x = inset + static_cast<double>(index) / last * (width() - 2 * inset);
        line << QPointF(x, yOfHeight(finiteHeight(heights[index])));
    }
    return line;
}

void DotCurve::paintGround(QSize size, double scale) {
    const Lattice cells = lattice();
    std::vector<bool> marked(static_cast<std::size_t>(cells.columns), false);
    if (octaveMarks_) {
        for (const double hz : octavesHz) {
            const auto column = std::lround((xOfFrequency(hz) - inset) / latticePitch);
            if (column >= 0 && column < cells.columns) {
                marked[static_cast<std::size_t>(column)] = true;
            }
        }
    }
    ground_ = QPixmap(size);
    ground_.fill(Qt::transparent);
    QPainter onto(&ground_);
    DotPainter painter(onto);
    for (int column = 0; column < cells.columns; ++column) {
        for (int row = -cells.rowsAbove; row <= cells.rowsAbove; ++row) {
            const bool zero = zeroLine_ && row == 0;
            const bool mark = marked[static_cast<std::size_t>(column)];
            const QColor &color = zero ? palette().edge : mark ? palette().dotMid : palette().dot;
            painter.dot(QPointF(cells.x(column), cells.y(row)) * scale,
                        (zero || mark ? markDot : latticeDot) * scale, color);
        }
    }

    behind_ = QPixmap(static_cast<int>(std::lround(latticePitch * scale)), size.height());
    behind_.fill(Qt::transparent);
    QPainter ontoColumn(&behind_);
    DotPainter column(ontoColumn);
    for (int row = -cells.rowsAbove; row <= cells.rowsAbove; ++row) {
        column.dot(QPointF(latticePitch / 2, cells.y(row)) * scale, spectrumDot * scale,
                   palette().dotMid);
    }
}

void DotCurve::paintCurve(QSize size, double scale) {
    curve_ = QPixmap(size);
    curve_.fill(Qt::transparent);
    QPainter onto(&curve_);
    DotPainter painter(onto);
    const QPolygonF line = points(values_);
    if (line.size() > 1) {
        const Lattice cells = lattice();
        const double step = line[1].x() - line[0].x();
        for (int column = 0; column < cells.columns; ++column) {
            const double place = (cells.x(column) - inset) / step;
            const auto index =
                std::clamp<qsizetype>(static_cast<qsizetype>(place), 0, line.size() - 2);
            const double part = place - static_cast<double>(index);
            const double y = line[index].y() * (1 - part) + line[index + 1].y() * part;
            const double rows = (cells.middle - y) / latticePitch;
            const int away = rows < 0 ? -1 : 1;
            for (int row = away; std::abs(row) < std::abs(rows); row += away) {
                painter.dot(QPointF(cells.x(column), cells.y(row)) * scale, fieldDot * scale,
                            palette().signalDim);
            }
        }
    }
    walk(points(secondaryValues_), secondaryStep,
         [&](QPointF at) { painter.dot(at * scale, secondaryDot * scale, palette().inkSoft); });
    walk(line, curveStep,
         [&](QPointF at) { painter.dot(at * scale, curveDot * scale, palette().signal); });
}

void DotCurve::paintDots(DotPainter &painter, QSize size) {
    if (size.isEmpty()) {
        return;
    }
    if (ground_.isNull()) {
        paintGround(size, painter.scale());
    }
    if (curve_.isNull()) {
        paintCurve(size, painter.scale());
    }
    painter->drawPixmap(0, 0, ground_);
    const Lattice cells = lattice();
    const double scale = painter.scale();
    for (int column = 0; column < cells.columns; ++column) {
        const int count = lit_[static_cast<std::size_t>(column)];
        if (count > 0) {
            const int x =
                static_cast<int>(std::lround((cells.x(column) - latticePitch / 2) * scale));
            const double highest = cells.y(count - 1 - cells.rowsAbove);
            const int top = static_cast<int>(std::lround((highest - latticePitch / 2) * scale));
            painter->drawPixmap(x, top, behind_, 0, top, behind_.width(), size.height() - top);
        }
    }
    painter->drawPixmap(0, 0, curve_);
}

} // namespace quorbel
