#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QList>
#include <QPixmap>
#include <QPolygonF>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// A response over frequency, 20 Hz to 20 kHz on a logarithmic axis: a lattice of dots, on it the
/// field between the curve and the middle, a spectrum behind, and the curve as a string of dots.
/// Painting only.
///
/// The plot fills the item but for half a unit on every side, so that a curve at either end is
/// whole. Marked columns and rows lie exactly at their frequency or height: the lattice's pitches
/// are the nearest ones that divide an octave and the lowest marked height.
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

    /// Heights of the curve, 0 (bottom) to 1 (top), at equal distances on the axis.
    [[nodiscard]] QList<double> values() const { return values_; }
    void setValues(const QList<double> &values);
    /// A second curve, fainter; may be empty.
    [[nodiscard]] QList<double> secondaryValues() const { return secondaryValues_; }
    void setSecondaryValues(const QList<double> &values);
    /// Levels 0 to 1 of bands that follow each other; may be empty.
    [[nodiscard]] QList<double> spectrum() const { return spectrum_; }
    void setSpectrum(const QList<double> &levels);
    /// Hz where each band begins, ascending, and where the last one ends.
    [[nodiscard]] QList<double> spectrumEdges() const { return spectrumEdges_; }
    void setSpectrumEdges(const QList<double> &edges);
    /// Heights 0 to 1 of darker rows, multiples of one distance from the middle.
    [[nodiscard]] QList<double> markedHeights() const { return markedHeights_; }
    void setMarkedHeights(const QList<double> &heights);
    /// Whether the curve is drawn as one that is not heard.
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

    /// Places in the item, in its coordinates. Outside of the axis they continue linearly.
    [[nodiscard]] Q_INVOKABLE double xOfFrequency(double hz) const;
    [[nodiscard]] Q_INVOKABLE double frequencyAt(double x) const;
    /// Places of heights 0 to 1.
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
    std::vector<Line> rows_;    // from the bottom; the one in the middle is at half the height
    std::vector<int> lit_;      // dots of the spectrum lit in each column of the lattice

    QPixmap ground_; // the dark lattice with its marks
    QPixmap behind_; // one column of the lattice as the spectrum lights it
    QPixmap curve_;  // curves and field without ground; painted again when a curve changes
};

} // namespace quorbel
