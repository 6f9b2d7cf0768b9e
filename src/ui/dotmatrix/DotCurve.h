#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QList>
#include <QPixmap>
#include <QPolygonF>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// Paints a response over frequency, 20 Hz to 20 kHz on a logarithmic axis: a lattice of dots, a
/// spectrum, the field between the curve and the middle, and the curve as a string of dots.
///
/// A margin of half a unit keeps a curve at either end from being clipped. Marked columns and rows
/// lie exactly at their frequency or height: the lattice's pitches divide an octave, and the
/// distance from the middle to the nearest mark.
class DotCurve : public quorbel::DotItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(DotCurveItem)
    Q_PROPERTY(QList<double> values READ values WRITE setValues NOTIFY valuesChanged FINAL)
    Q_PROPERTY(QList<double> secondaryValues READ secondaryValues WRITE setSecondaryValues NOTIFY
                   secondaryValuesChanged FINAL)
    Q_PROPERTY(QList<double> spectrum READ spectrum WRITE setSpectrum NOTIFY spectrumChanged FINAL)
    Q_PROPERTY(QList<double> spectrumEdges READ spectrumEdges WRITE setSpectrumEdges NOTIFY
                   spectrumEdgesChanged FINAL)
    Q_PROPERTY(QList<double> markedHeights READ markedHeights WRITE setMarkedHeights NOTIFY
                   markedHeightsChanged FINAL)
    Q_PROPERTY(bool dimmed READ isDimmed WRITE setDimmed NOTIFY dimmedChanged FINAL)
    Q_PROPERTY(
        bool octaveMarks READ octaveMarks WRITE setOctaveMarks NOTIFY octaveMarksChanged FINAL)
    Q_PROPERTY(QList<double> octaves READ octaves CONSTANT FINAL)
    Q_PROPERTY(bool zeroLine READ zeroLine WRITE setZeroLine NOTIFY zeroLineChanged FINAL)

  public:
    explicit DotCurve(QQuickItem *parent = nullptr);

    /// Heights of the curve, 0 (bottom) to 1 (top), equally spaced on the axis.
    [[nodiscard]] QList<double> values() const { return values_; }
    void setValues(const QList<double> &values);
    /// A second curve, fainter; may be empty.
    [[nodiscard]] QList<double> secondaryValues() const { return secondaryValues_; }
    void setSecondaryValues(const QList<double> &values);
    /// Levels of adjacent bands, 0 to 1; may be empty.
    [[nodiscard]] QList<double> spectrum() const { return spectrum_; }
    void setSpectrum(const QList<double> &levels);
    /// Lower edge of each band in Hz, ascending, then the upper edge of the last band.
    [[nodiscard]] QList<double> spectrumEdges() const { return spectrumEdges_; }
    void setSpectrumEdges(const QList<double> &edges);
    /// Heights of darker rows, 0 to 1, at multiples of one distance from the middle.
    [[nodiscard]] QList<double> markedHeights() const { return markedHeights_; }
    void setMarkedHeights(const QList<double> &heights);
    /// Whether the curve is drawn faintly, because it is not audible.
    [[nodiscard]] bool isDimmed() const { return dimmed_; }
    void setDimmed(bool dimmed);
    /// The octaves of the axis in Hz: 31.5, 63, 125 ... 16000.
    [[nodiscard]] static QList<double> octaves();
    /// Darker columns at the octaves.
    [[nodiscard]] bool octaveMarks() const { return octaveMarks_; }
    void setOctaveMarks(bool show);
    /// A darker row at half the height.
    [[nodiscard]] bool zeroLine() const { return zeroLine_; }
    void setZeroLine(bool show);

    /// Converts between frequency and x in item coordinates; extrapolates beyond the axis.
    [[nodiscard]] Q_INVOKABLE double xOfFrequency(double hz) const;
    [[nodiscard]] Q_INVOKABLE double frequencyAt(double x) const;
    /// Converts between heights, 0 to 1, and y in item coordinates.
    [[nodiscard]] Q_INVOKABLE double yOfHeight(double height) const;
    [[nodiscard]] Q_INVOKABLE double heightAt(double y) const;

  Q_SIGNALS:
    void valuesChanged();
    void secondaryValuesChanged();
    void spectrumChanged();
    void spectrumEdgesChanged();
    void markedHeightsChanged();
    void dimmedChanged();
    void octaveMarksChanged();
    void zeroLineChanged();

  protected:
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void paintDots(DotPainter &painter, QSize size) override;
    void dropPictures() override;

  private:
    struct Line {
        double place = 0; ///< x of a column, y of a row
        bool isMarked = false;
    };
    static void mark(std::vector<Line> &lines, double place);
    void layOut();
    [[nodiscard]] double rowPitch() const;
    void light();
    [[nodiscard]] int bandAt(double hz) const;
    [[nodiscard]] QPolygonF points(const QList<double> &heights) const;
    void paintGround(QSize size, double scale);
    void paintCurve(QSize size, double scale);

    QList<double> values_;
    QList<double> secondaryValues_;
    QList<double> spectrum_;
    QList<double> spectrumEdges_;
    QList<double> markedHeights_;
    bool dimmed_ = false;
    bool octaveMarks_ = true;
    bool zeroLine_ = true;
    std::vector<Line> columns_; // of the lattice, from the left
    std::vector<Line> rows_;    // from the bottom; the middle one is at half the height
    std::vector<int> lit_;      // lit dots of the spectrum per column of the lattice

    QPixmap ground_; // the dark lattice with its marks
    QPixmap behind_; // one column of the spectrum, fully lit
    QPixmap curve_;  // curves and field, repainted when a curve changes
};

} // namespace quorbel
