#pragma once

#include "engine/AudioEngine.h"

#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Live spectrum for drawing. Follows the analyzer, 30 times a second at most, only while visible
/// and only if the levels change. [main]
class SpectrumModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.spectrum is the only one")
    /// 32 levels, 0 to 1; all 0 while inactive. Bands below the analyzer's resolution are
    /// interpolated from their neighbours.
    Q_PROPERTY(QList<qreal> levels READ levels NOTIFY levelsChanged)
    /// 33 frequencies in Hz: the lower edge of each band and the upper edge of the last.
    Q_PROPERTY(QList<qreal> edges READ edges CONSTANT)
    /// True if processing runs and the analyzer is switched on.
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
