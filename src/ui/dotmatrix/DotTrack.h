#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QList>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// A slider's track: a row of dots, lit from `origin` to `position`, and the handle.
class DotTrack : public quorbel::DotItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double position READ position WRITE setPosition NOTIFY positionChanged FINAL)
    Q_PROPERTY(double origin READ origin WRITE setOrigin NOTIFY originChanged FINAL)
    Q_PROPERTY(bool vertical READ isVertical WRITE setVertical NOTIFY verticalChanged FINAL)
    Q_PROPERTY(bool hot READ isHot WRITE setHot NOTIFY hotChanged FINAL)
    Q_PROPERTY(QList<double> ticks READ ticks WRITE setTicks NOTIFY ticksChanged FINAL)
    Q_PROPERTY(double handleSize READ handleSize CONSTANT FINAL)

  public:
    explicit DotTrack(QQuickItem *parent = nullptr);

    [[nodiscard]] double position() const { return position_; }
    void setPosition(double position);
    [[nodiscard]] double origin() const { return origin_; }
    void setOrigin(double origin);
    /// Whether positions rise upward instead of to the right.
    [[nodiscard]] bool isVertical() const { return vertical_; }
    void setVertical(bool vertical);
    /// Whether the handle is hovered or held.
    [[nodiscard]] bool isHot() const { return hot_; }
    void setHot(bool hot);

    /// Positions with a mark on both sides of the track.
    [[nodiscard]] QList<double> ticks() const { return ticks_; }
    void setTicks(const QList<double> &positions);

    [[nodiscard]] double handleSize() const;

    /// The position under a point of the item; may lie outside 0 to 1.
    [[nodiscard]] Q_INVOKABLE double positionAt(double x, double y) const;
    /// Centre of the handle, measured along the track from its upper or left end.
    [[nodiscard]] Q_INVOKABLE double handleCentre(double position) const;
    [[nodiscard]] Q_INVOKABLE bool isHandle(double x, double y) const;

  Q_SIGNALS:
    void positionChanged();
    void originChanged();
    void verticalChanged();
    void hotChanged();
    void ticksChanged();

  protected:
    void paintDots(DotPainter &painter, QSize size) override;

  private:
    [[nodiscard]] double length() const { return vertical_ ? height() : width(); }

    double position_ = 0;
    double origin_ = 0;
    bool vertical_ = false;
    bool hot_ = false;
    QList<double> ticks_;
};

} // namespace quorbel
