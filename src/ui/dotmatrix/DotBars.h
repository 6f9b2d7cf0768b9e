#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QList>
#include <QPixmap>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// Levels as columns of dots, the topmost lit one in the signal colour. A wide item shows each
/// level several dots wide; if three or more fit, one of them is left out as a gap.
class DotBars : public quorbel::DotItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(DotBarsItem)
    Q_PROPERTY(QList<double> levels READ levels WRITE setLevels NOTIFY levelsChanged FINAL)
    Q_PROPERTY(int columns READ columns WRITE setColumns NOTIFY columnsChanged FINAL)
    Q_PROPERTY(int rows READ rows WRITE setRows NOTIFY rowsChanged FINAL)
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged FINAL)

  public:
    explicit DotBars(QQuickItem *parent = nullptr);

    /// Heights, 0 to 1; a missing one or NaN counts as 0.
    [[nodiscard]] QList<double> levels() const { return levels_; }
    void setLevels(const QList<double> &levels);

    [[nodiscard]] int columns() const { return columns_; }
    void setColumns(int columns);
    [[nodiscard]] int rows() const { return rows_; }
    void setRows(int rows);

    /// Shows the levels; if false, every dot is dark.
    [[nodiscard]] bool isActive() const { return active_; }
    void setActive(bool active);

  Q_SIGNALS:
    void levelsChanged();
    void columnsChanged();
    void rowsChanged();
    void activeChanged();

  protected:
    void paintDots(DotPainter &painter, QSize size) override;
    void dropPictures() override;

  private:
    void light();
    void makePictures(QSize size);

    QList<double> levels_;
    int columns_ = 32;
    int rows_ = 12;
    bool active_ = true;
    std::vector<int> lit_; // dots lit in each column

    struct Pictures {
        QPixmap dark, lit, top;
        int columnPitch = 0; // device pixels
        int rowPitch = 0;
        int columnWidth = 0;
    } pictures_;
};

} // namespace quorbel
