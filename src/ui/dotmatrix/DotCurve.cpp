#include "ui/dotmatrix/DotCurve.h"

#include "platform/core/OctaveBands.h"
#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorbel {
namespace {

constexpr double latticePitch = 8;
constexpr double inset = 4; // margin of the plot
constexpr double lowestHz = 20;
constexpr double decades = 3; // up to 20 kHz

// Distances and diameters along the curves, device-independent pixels.
constexpr double latticeDot = 2;
constexpr double markDot = 3;
constexpr double fieldDot = 4;
constexpr double spectrumDot = 4;
constexpr double curveStep = 4;
constexpr double curveDot = 3.5;
constexpr double secondaryStep = 6;
constexpr double secondaryDot = 2;

/// Visits equidistant points along a line.
template <class Visit> void walk(const QPolygonF &line, double step, Visit visit) {
    double left = 0; // distance to the next point
    for (qsizetype index = 1; index < line.size(); ++index) {
        const QPointF from = line[index - 1];
        const QPointF along = line[index] - from;
        const double length = std::hypot(along.x(), along.y());
        double at = left;
        for (; at < length; at += step)
            visit(from + along * (at / length));
        left = at - length;
    }
}

/// Returns the pitch nearest to `latticePitch` that divides a distance evenly.
double fittingPitch(double distance) {
    return distance > 0 ? distance / std::max(1.0, std::round(distance / latticePitch))
                        : latticePitch;
}

double finiteHeight(double height) {
    return std::isfinite(height) ? std::clamp(height, 0.0, 1.0) : 0.5;
}

} // namespace

DotCurve::DotCurve(QQuickItem *parent) : DotItem(parent) {
    setImplicitSize(80 * latticePitch, 25 * latticePitch);
    layOut();
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

void DotCurve::setSpectrumEdges(const QList<double> &edges) {
    if (spectrumEdges_ != edges) {
        spectrumEdges_ = edges;
        light();
        Q_EMIT spectrumEdgesChanged();
    }
}

void DotCurve::setMarkedHeights(const QList<double> &heights) {
    if (take(markedHeights_, heights)) {
        layOut();
        Q_EMIT markedHeightsChanged();
    }
}

void DotCurve::setDimmed(bool dimmed) {
    if (take(dimmed_, dimmed)) {
        curve_ = {};
        Q_EMIT dimmedChanged();
    }
}

QList<double> DotCurve::octaves() { return {octaveBandsHz.begin(), octaveBandsHz.end()}; }

void DotCurve::setOctaveMarks(bool show) {
    if (take(octaveMarks_, show)) {
        layOut();
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
    layOut();
}

/// Marks the nearest line and moves it to `place`, by about a pixel.
void DotCurve::mark(std::vector<Line> &lines, double place) {
    const auto nearest = std::ranges::min_element(
        lines, {}, [place](const Line &line) { return std::abs(line.place - place); });
    if (nearest != lines.end())
        *nearest = {.place = place, .isMarked = true};
}

double DotCurve::rowPitch() const {
    double distance = 0; // from the middle to the nearest mark
    for (const double height : markedHeights_) {
        const double from = std::abs(yOfHeight(height) - this->height() / 2);
        if (from > 0 && (distance == 0 || from < distance))
            distance = from;
    }
    return fittingPitch(distance);
}

void DotCurve::layOut() {
    columns_.clear();
    const double columnPitch = fittingPitch(xOfFrequency(2000) - xOfFrequency(1000));
    const double anchor = xOfFrequency(1000);
    const double first = anchor - std::floor((anchor - inset) / columnPitch) * columnPitch;
    for (double x = first; x <= width() - inset; x += columnPitch)
        columns_.push_back({.place = x});
    const int rowsAbove = std::max(0, static_cast<int>((height() / 2 - inset) / rowPitch()));
    rows_.clear();
    for (int row = -rowsAbove; row <= rowsAbove; ++row)
        rows_.push_back({.place = height() / 2 - row * rowPitch()});
    if (octaveMarks_)
        for (const double hz : octaveBandsHz)
            mark(columns_, xOfFrequency(hz));
    for (const double height : markedHeights_)
        mark(rows_, yOfHeight(height));
    dropPictures();
    light();
}

/// Returns the spectrum band that contains a frequency, or -1.
int DotCurve::bandAt(double hz) const {
    if (spectrumEdges_.size() != spectrum_.size() + 1)
        return -1;
    const auto above = std::ranges::upper_bound(spectrumEdges_, hz);
    return above == spectrumEdges_.end() ? -1
                                         : static_cast<int>(above - spectrumEdges_.begin()) - 1;
}

// Levels arrive 30 times a second: repaints only if the number of lit dots changes.
void DotCurve::light() {
    std::vector<int> lit(columns_.size(), 0);
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        const int band = bandAt(frequencyAt(columns_[column].place));
        const double level = band >= 0 ? spectrum_[band] : 0;
        if (level > 0) { // false for NaN
            lit[column] = static_cast<int>(
                std::lround(std::min(level, 1.0) * static_cast<double>(rows_.size())));
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
    ground_ = QPixmap(size);
    ground_.fill(Qt::transparent);
    QPainter onto(&ground_);
    DotPainter painter(onto);
    const std::size_t middle = rows_.size() / 2;
    for (const Line &column : columns_) {
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            const bool zero = zeroLine_ && row == middle;
            const bool mark = column.isMarked || rows_[row].isMarked;
            const QColor &color = zero ? palette().edge : mark ? palette().dotMid : palette().dot;
            painter.dot(QPointF(column.place, rows_[row].place) * scale,
                        (zero || mark ? markDot : latticeDot) * scale, color);
        }
    }

    behind_ = QPixmap(static_cast<int>(std::lround(latticePitch * scale)), size.height());
    behind_.fill(Qt::transparent);
    QPainter ontoColumn(&behind_);
    DotPainter column(ontoColumn);
    for (const Line &row : rows_) {
        column.dot(QPointF(latticePitch / 2, row.place) * scale, spectrumDot * scale,
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
        const double middle = height() / 2;
        const double step = line[1].x() - line[0].x();
        for (const Line &column : columns_) {
            const double place = (column.place - inset) / step;
            const auto index =
                std::clamp<qsizetype>(static_cast<qsizetype>(place), 0, line.size() - 2);
            const double part = place - static_cast<double>(index);
            const double y = line[index].y() * (1 - part) + line[index + 1].y() * part;
            const auto [top, bottom] = std::minmax(y, middle);
            for (const Line &row : rows_) {
                if (row.place > top && row.place < bottom) {
                    painter.dot(QPointF(column.place, row.place) * scale, fieldDot * scale,
                                dimmed_ ? palette().dot : palette().signalDim);
                }
            }
        }
    }
    walk(points(secondaryValues_), secondaryStep,
         [&](QPointF at) { painter.dot(at * scale, secondaryDot * scale, palette().inkSoft); });
    walk(line, curveStep, [&](QPointF at) {
        painter.dot(at * scale, curveDot * scale, dimmed_ ? palette().dotMid : palette().signal);
    });
}

void DotCurve::paintDots(DotPainter &painter, QSize size) {
    if (size.isEmpty())
        return;
    if (ground_.isNull())
        paintGround(size, painter.scale());
    if (curve_.isNull())
        paintCurve(size, painter.scale());
    painter->drawPixmap(0, 0, ground_);
    const double scale = painter.scale();
    const auto device = [scale](double place) {
        return static_cast<int>(std::lround(place * scale));
    };
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        if (const auto count = static_cast<std::size_t>(lit_[column]); count > 0) {
            const double highest = rows_[count - 1].place;
            const double above = count < rows_.size() ? rows_[count].place : highest - rowPitch();
            const int top = device((highest + above) / 2);
            painter->drawPixmap(device(columns_[column].place - latticePitch / 2), top, behind_, 0,
                                top, behind_.width(), size.height() - top);
        }
    }
    painter->drawPixmap(0, 0, curve_);
}

} // namespace quorbel
