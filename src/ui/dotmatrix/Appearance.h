#pragma once

#include "ui/dotmatrix/Palette.h"

#include <QDBusMessage>
#include <QObject>

namespace quorbel {

/// The user's wishes for every program on the desktop: more contrast, less motion, larger text.
/// Contrast and motion come from the desktop's settings portal; without one both stay off. All are
/// followed while the program runs.
///
/// One per process, main thread only.
class Appearance final : public QObject {
    Q_OBJECT

  public:
    [[nodiscard]] static Appearance &instance();

    [[nodiscard]] bool highContrast() const { return highContrast_; }
    [[nodiscard]] bool reducedMotion() const { return reducedMotion_; }
    /// Size of text, 1 to 2, where 1 is the size that the window is drawn for: the application
    /// font's size over 10 points. A smaller font changes nothing.
    [[nodiscard]] double textScale() const { return textScale_; }
    [[nodiscard]] const Palette &palette() const { return paletteFor(highContrast_); }

    void setHighContrast(bool on);
    void setReducedMotion(bool on);

    /// GNOME's own factor, which Qt counts in its resolution on X11 and not at all on Wayland.
    void setTextFactor(double factor);

    /// Asks the portal and listens to it from then on. Returns at once; the answers arrive later.
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
