#pragma once

#include "engine/AudioEngine.h"

#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// The live spectrum for drawing: follows the analyzer, 30 times a second at most, only while it is
/// seen and only where something has changed. [main]
class SpectrumModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.spectrum is the only one")
    /// 32 levels, 0 to 1, those of bands narrower than the analyzer can tell filled from their
    /// neighbours; all 0 while not active.
    Q_PROPERTY(QList<qreal> levels READ levels NOTIFY levelsChanged)
    /// 33 frequencies in Hz: where each band begins, and where the last one ends.
    Q_PROPERTY(QList<qreal> edges READ edges CONSTANT)
    /// True if there is something to show: processing runs and the analyzer is switched on.
    Q_PROPERTY(bool active READ active NOTIFY activeChanged)
    /// Set by the window: false while it is hidden or minimised. The engine then measures nothing
    /// for display.
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)

  public:
    SpectrumModel(AudioEngine &engine, QObject *parent);

    [[nodiscard]] QList<qreal> levels() const { return levels_; }
    [[nodiscard]] static QList<qreal> edges();
    [[nodiscard]] bool active() const { return active_; }
    [[nodiscard]] bool isVisible() const { return visible_; }
    void setVisible(bool visible);

  Q_SIGNALS:
    void levelsChanged();
    void activeChanged();
    void visibleChanged();

  private:
    void followEngine();
    void followLevels();
    [[nodiscard]] QList<qreal> drawnLevels() const;

    AudioEngine &engine_;
    QList<qreal> levels_;
    bool active_ = false;
    bool visible_ = true;
};

} // namespace quorbel
