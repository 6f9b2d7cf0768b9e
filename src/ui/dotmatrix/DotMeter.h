#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// A value as a run of lit dots from `origin`, and a mark in the signal colour at `peak`.
class DotMeter : public quorbel::DotItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(DotMeterItem)
    Q_PROPERTY(double from READ from WRITE setFrom NOTIFY fromChanged FINAL)
    Q_PROPERTY(double to READ to WRITE setTo NOTIFY toChanged FINAL)
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged FINAL)
    Q_PROPERTY(
        double origin READ origin WRITE setOrigin RESET resetOrigin NOTIFY originChanged FINAL)
    Q_PROPERTY(double peak READ peak WRITE setPeak RESET resetPeak NOTIFY peakChanged FINAL)

  public:
    explicit DotMeter(QQuickItem *parent = nullptr);

    double from() const { return from_; }
    void setFrom(double from);
    double to() const { return to_; }
    void setTo(double to);
    double value() const { return value_; }
    void setValue(double value);

    /// Where the lit run begins; `from`, unless set.
    double origin() const;
    void setOrigin(double origin);
    void resetOrigin();

    /// Where the mark stands; not a number: no mark.
    double peak() const { return peak_; }
    void setPeak(double peak);
    void resetPeak();

  Q_SIGNALS:
    void fromChanged();
    void toChanged();
    void valueChanged();
    void originChanged();
    void peakChanged();

  protected:
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void paintDots(DotPainter &painter, QSize size) override;

  private:
    struct Lit {
        int count = 0; // dots in all
        int first = 0; // lit from here
        int last = 0;  // to before here
        int peak = -1;
        bool operator==(const Lit &) const = default;
    };
    Lit lit() const;
    void light();

    double from_ = 0;
    double to_ = 1;
    double value_ = 0;
    double origin_;
    double peak_;
    Lit lit_;
};

} // namespace quorbel
