#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Base of slider, knob and point: a value in a range, moved in steps. The value comes from the
/// model and may lie outside the range until the user moves it. A move sets the value, emits
/// `moved` and keeps the binding of the value.
class ValueControl : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double from READ from WRITE setFrom NOTIFY fromChanged FINAL)
    Q_PROPERTY(double to READ to WRITE setTo NOTIFY toChanged FINAL)
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged FINAL)
    Q_PROPERTY(double stepSize READ stepSize WRITE setStepSize NOTIFY stepSizeChanged FINAL)
    Q_PROPERTY(
        double origin READ origin WRITE setOrigin RESET resetOrigin NOTIFY originChanged FINAL)
    Q_PROPERTY(double position READ position NOTIFY positionChanged FINAL)
    Q_PROPERTY(double originPosition READ originPosition NOTIFY originPositionChanged FINAL)
    Q_PROPERTY(double step READ step NOTIFY stepSizeChanged FINAL)
    Q_PROPERTY(QString accessibleName MEMBER accessibleName NOTIFY accessibleNameChanged FINAL)
    Q_PROPERTY(QString valueText MEMBER valueText NOTIFY valueTextChanged FINAL)
    Q_PROPERTY(bool logarithmic MEMBER logarithmic NOTIFY logarithmicChanged FINAL)

  public:
    explicit ValueControl(QQuickItem *parent = nullptr);

    [[nodiscard]] double from() const { return from_; }
    void setFrom(double from);
    [[nodiscard]] double to() const { return to_; }
    void setTo(double to);
    [[nodiscard]] double value() const { return value_; }
    void setValue(double value);
    /// Distance between reachable values, counted from `from`; 0: any value is reachable.
    [[nodiscard]] double stepSize() const { return stepSize_; }
    void setStepSize(double size);
    /// Value where the lit dots begin; defaults to `from`.
    [[nodiscard]] double origin() const;
    void setOrigin(double origin);
    void resetOrigin();

    /// Value and origin as fractions of the range, 0 to 1.
    [[nodiscard]] double position() const { return positionOf(value_); }
    [[nodiscard]] double originPosition() const { return positionOf(origin()); }
    /// Step of an arrow key: the step size, or a hundredth of the range if that is 0.
    [[nodiscard]] double step() const;

    /// Moves by the user: sets the nearest reachable value and emits `moved` if it differs. With a
    /// `direction` (only its sign counts; 0: none) the value moves that way or stays: from -20 in a
    /// range of -12 to 12, a step up leads to -12 and a step down changes nothing. The direction of
    /// a position is along the control.
    Q_INVOKABLE void moveTo(double value, double direction = 0);
    Q_INVOKABLE void moveToPosition(double position, double direction = 0);
    Q_INVOKABLE void moveBy(int steps);

    QString accessibleName;
    QString valueText;
    /// Whether equal moves are equal ratios, with `stepSize` in octaves. Needs a positive range;
    /// set once.
    bool logarithmic = false;

  Q_SIGNALS:
    void fromChanged();
    void toChanged();
    void valueChanged();
    void stepSizeChanged();
    void originChanged();
    void positionChanged();
    void originPositionChanged();
    void accessibleNameChanged();
    void valueTextChanged();
    void logarithmicChanged();
    /// The user has changed the value.
    void moved();
    /// The user asks for the value's default.
    void resetRequested();

  private:
    [[nodiscard]] double scaled(double value) const;
    [[nodiscard]] double unscaled(double place) const;
    [[nodiscard]] double positionOf(double value) const;
    [[nodiscard]] double reachable(double value) const;

    double from_ = 0;
    double to_ = 1;
    double value_ = 0;
    double stepSize_ = 0;
    double origin_;
};

} // namespace quorbel
