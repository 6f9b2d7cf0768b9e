#pragma once

#include "ui/dotmatrix/Palette.h"

#include <QDBusMessage>
#include <QObject>

namespace quorbel {

/// What the user asked of every program on the desktop: more contrast, less motion. Asked from the
/// desktop's settings portal and followed while the program runs; without a portal both stay off.
///
/// One per process, main thread only.
class Appearance : public QObject {
    Q_OBJECT

  public:
    static Appearance &instance();

    bool highContrast() const { return highContrast_; }
    bool reducedMotion() const { return reducedMotion_; }
    const Palette &palette() const { return paletteFor(highContrast_); }

    void setHighContrast(bool on);
    void setReducedMotion(bool on);

    /// Asks the portal and listens to it from then on. Returns at once; the answers arrive later.
    void followDesktop();

  Q_SIGNALS:
    void changed();

  private Q_SLOTS:
    void settingChanged(const QDBusMessage &message);

  private:
    Appearance() = default;
    void apply(const QString &group, const QString &key, const QVariant &value);

    bool highContrast_ = false;
    bool reducedMotion_ = false;
    bool following_ = false;
};

} // namespace quorbel
