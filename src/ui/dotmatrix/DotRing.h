#pragma once

#include "ui/dotmatrix/DotItem.h"

#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// A knob's face: dots around three quarters of a circle, lit from `origin` to `position`, and a
/// pointer.
class DotRing : public quorbel::DotItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double position READ position WRITE setPosition NOTIFY positionChanged FINAL)
    Q_PROPERTY(double origin READ origin WRITE setOrigin NOTIFY originChanged FINAL)
    Q_PROPERTY(int dots READ dots WRITE setDots NOTIFY dotsChanged FINAL)
    Q_PROPERTY(bool hot READ isHot WRITE setHot NOTIFY hotChanged FINAL)

  public:
    explicit DotRing(QQuickItem *parent = nullptr);

    [[nodiscard]] double position() const { return position_; }
    void setPosition(double position);
    [[nodiscard]] double origin() const { return origin_; }
    void setOrigin(double origin);
    [[nodiscard]] int dots() const { return dots_; }
    void setDots(int dots);
    /// Whether the knob is hovered or held.
    [[nodiscard]] bool isHot() const { return hot_; }
    void setHot(bool hot);

  Q_SIGNALS:
    void positionChanged();
    void originChanged();
    void dotsChanged();
    void hotChanged();

  protected:
    void paintDots(DotPainter &painter, QSize size) override;

  private:
    double position_ = 0;
    double origin_ = 0;
    int dots_ = 25;
    bool hot_ = false;
};

} // namespace quorbel
