#pragma once

#include "ui/dotmatrix/Palette.h"

#include <QDBusMessage>
#include <QObject>

namespace quorbel {

/// The user's desktop-wide preferences: high contrast, reduced motion, text size. Contrast and
/// motion come from the desktop's settings portal; without one both stay off. Changes apply while
/// the program runs.
///
/// One per process, main thread only.
class Appearance final : public QObject {
    Q_OBJECT

  public:
    [[nodiscard]] static Appearance &instance();

    [[nodiscard]] bool highContrast() const { return highContrast_; }
    [[nodiscard]] bool reducedMotion() const { return reducedMotion_; }
    /// Text scale, 1 to 2: the application font's size divided by the 10 points of the design. A
    /// smaller font gives 1.
    [[nodiscard]] double textScale() const { return textScale_; }
    [[nodiscard]] const Palette &palette() const { return paletteFor(highContrast_); }

    void setHighContrast(bool on);
    void setReducedMotion(bool on);

    /// Sets GNOME's text factor, which Qt includes in its resolution on X11 and ignores on Wayland.
    void setTextFactor(double factor);

    /// Queries the portal and follows its changes. Returns immediately; the answers arrive later.
    void followDesktop();

  Q_SIGNALS:
    void changed();

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private Q_SLOTS:
    void settingChanged(const QDBusMessage &message);

  private:
    Appearance() = default;
    void updateTextScale();
    void apply(const QString &group, const QString &key, const QVariant &value);

    bool highContrast_ = false;
    bool reducedMotion_ = false;
    double textFactor_ = 1;
    double textScale_ = 1;
    bool following_ = false;
};

} // namespace quorbel
