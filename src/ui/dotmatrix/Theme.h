#pragma once

#include "ui/dotmatrix/Appearance.h"

#include <QFont>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Colours, sizes and durations of the window, for QML. Sizes are in device-independent pixels.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor paper READ paper NOTIFY changed FINAL)
    Q_PROPERTY(QColor card READ card NOTIFY changed FINAL)
    Q_PROPERTY(QColor rule READ rule NOTIFY changed FINAL)
    Q_PROPERTY(QColor pressed READ pressed NOTIFY changed FINAL)
    Q_PROPERTY(QColor edge READ edge NOTIFY changed FINAL)
    Q_PROPERTY(QColor ink READ ink NOTIFY changed FINAL)
    Q_PROPERTY(QColor inkSoft READ inkSoft NOTIFY changed FINAL)
    Q_PROPERTY(QColor dot READ dot NOTIFY changed FINAL)
    Q_PROPERTY(QColor dotMid READ dotMid NOTIFY changed FINAL)
    // "signal" is a keyword of Qt's, hence the getter's name.
    Q_PROPERTY(QColor signal READ signalColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor signalInk READ signalInk NOTIFY changed FINAL)
    Q_PROPERTY(QColor signalDim READ signalDim NOTIFY changed FINAL)
    Q_PROPERTY(QColor onSignal READ onSignal NOTIFY changed FINAL)
    Q_PROPERTY(QColor warning READ warning NOTIFY changed FINAL)
    Q_PROPERTY(QColor veil READ veil NOTIFY changed FINAL)
    Q_PROPERTY(double unit READ unit CONSTANT FINAL)
    Q_PROPERTY(double radius READ radius CONSTANT FINAL)
    Q_PROPERTY(double hairline READ hairline NOTIFY changed FINAL)
    Q_PROPERTY(double controlHeight READ controlHeight CONSTANT FINAL)
    Q_PROPERTY(double dotPitch READ dotPitch CONSTANT FINAL)
    Q_PROPERTY(int titleSize READ titleSize CONSTANT FINAL)
    Q_PROPERTY(int headingSize READ headingSize CONSTANT FINAL)
    Q_PROPERTY(int bodySize READ bodySize CONSTANT FINAL)
    Q_PROPERTY(int captionSize READ captionSize CONSTANT FINAL)
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT FINAL)
    Q_PROPERTY(int duration READ duration NOTIFY changed FINAL)
    Q_PROPERTY(double disabledOpacity READ disabledOpacity CONSTANT FINAL)
    Q_PROPERTY(bool highContrast READ highContrast NOTIFY changed FINAL)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed FINAL)

  public:
    explicit Theme(QObject *parent = nullptr);

    QColor paper() const { return palette().paper; }
    QColor card() const { return palette().card; }
    QColor rule() const { return palette().rule; }
    QColor pressed() const { return palette().pressed; }
    QColor edge() const { return palette().edge; }
    QColor ink() const { return palette().ink; }
    QColor inkSoft() const { return palette().inkSoft; }
    QColor dot() const { return palette().dot; }
    QColor dotMid() const { return palette().dotMid; }
    QColor signalColor() const { return palette().signal; }
    QColor signalInk() const { return palette().signalInk; }
    QColor signalDim() const { return palette().signalDim; }
    QColor onSignal() const { return palette().onSignal; }
    QColor warning() const { return palette().warning; }
    QColor veil() const { return palette().veil; }

    double unit() const { return 8; }
    double radius() const { return 4; }
    double hairline() const { return highContrast() ? 2 : 1; }
    double controlHeight() const { return 32; }
    double dotPitch() const { return 8; }
    int titleSize() const { return 24; }
    int headingSize() const { return 15; }
    int bodySize() const { return 13; }
    int captionSize() const { return 11; }
    QString fontFamily() const;
    /// Milliseconds of a transition; none where the desktop asks for less motion.
    int duration() const { return reducedMotion() ? 0 : 120; }
    double disabledOpacity() const { return 0.4; }
    bool highContrast() const { return Appearance::instance().highContrast(); }
    bool reducedMotion() const { return Appearance::instance().reducedMotion(); }

  Q_SIGNALS:
    void changed();

  private:
    static const Palette &palette() { return Appearance::instance().palette(); }
};

} // namespace quorbel
