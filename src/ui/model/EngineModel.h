#pragma once

#include "platform/threads/Timer.h"
#include "settings/state/AppState.h"
#include "ui/logic/PanelTexts.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace quorbel {

/// Returns an error's text for the window: unchanged, unless a loaded catalogue rewords it.
[[nodiscard]] QString shownError(const std::string &message);

/// State of the engine for the toolbar, the live panel and the meters. [main]
class EngineModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.engine is the only one")
    /// "idle", "running" or "error". Unchanged during a start.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(bool running READ running NOTIFY stateChanged)
    /// True if it restarts by itself once the hardware allows it; `stop` cancels that.
    Q_PROPERTY(bool comingBack READ comingBack NOTIFY stateChanged)
    /// True if processing is on but the output in use is left alone.
    Q_PROPERTY(bool leavingAlone READ leavingAlone NOTIFY stateChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY stateChanged)
    Q_PROPERTY(QString stateWord READ stateWord NOTIFY stateChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY subtitleChanged)
    /// Outlook after an error or while an output is left alone; empty for none.
    Q_PROPERTY(QString outlook READ outlook NOTIFY outlookChanged)
    Q_PROPERTY(QString secondLine READ secondLine NOTIFY secondLineChanged)
    Q_PROPERTY(double limiterReductionDB READ limiterReductionDB NOTIFY limiterReductionDBChanged)
    Q_PROPERTY(QString reductionText READ reductionText NOTIFY limiterReductionDBChanged)
    Q_PROPERTY(
        QString reductionCompactText READ reductionCompactText NOTIFY limiterReductionDBChanged)
    Q_PROPERTY(double autoGainDB READ autoGainDB NOTIFY autoGainDBChanged)
    Q_PROPERTY(QString autoGainText READ autoGainText NOTIFY autoGainDBChanged)
    Q_PROPERTY(
        double bassTrackedFrequency READ bassTrackedFrequency NOTIFY bassTrackedFrequencyChanged)
    Q_PROPERTY(QString trackingText READ trackingText NOTIFY bassTrackedFrequencyChanged)
    Q_PROPERTY(double voiceConfidence READ voiceConfidence NOTIFY voiceConfidenceChanged)
    Q_PROPERTY(QString confidenceText READ confidenceText NOTIFY voiceConfidenceChanged)
    /// Losses since the start; empty for none.
    Q_PROPERTY(QString losses READ losses NOTIFY lossesChanged)
    /// True while a held key plays the unprocessed sound, at matched loudness.
    Q_PROPERTY(bool comparing READ comparing WRITE setComparing NOTIFY comparingChanged)

  public:
    EngineModel(AppState &state, Clock &clock, QObject *parent);

    [[nodiscard]] QString state() const;
    [[nodiscard]] bool running() const;
    [[nodiscard]] bool comingBack() const;
    [[nodiscard]] bool leavingAlone() const;
    /// True if processing runs or will resume without user action.
    [[nodiscard]] bool wanted() const { return running() || comingBack() || leavingAlone(); }
    [[nodiscard]] QString errorMessage() const;
    [[nodiscard]] QString stateWord() const;
    [[nodiscard]] QString subtitle() const;
    [[nodiscard]] QString outlook() const;
    [[nodiscard]] QString secondLine() const;

    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void toggle();

    /// Sets the check before every start. It returns the reason against the start, shown like an
    /// engine error; empty for none.
    void setStartCheck(std::function<QString()> check) { startCheck_ = std::move(check); }

    /// Reason against the last start, while it persists; empty for none.
    [[nodiscard]] const QString &refusal() const { return refusal_; }

    [[nodiscard]] bool comparing() const;
    void setComparing(bool comparing);

    [[nodiscard]] double limiterReductionDB() const;
    [[nodiscard]] QString reductionText() const;        ///< "1.3 dB"
    [[nodiscard]] QString reductionCompactText() const; ///< "1 dB red."
    [[nodiscard]] double autoGainDB() const;
    [[nodiscard]] QString autoGainText() const;        ///< "+4.2 dB"
    [[nodiscard]] double bassTrackedFrequency() const; ///< Hz
    [[nodiscard]] QString trackingText() const;
    [[nodiscard]] double voiceConfidence() const; ///< 0 to 1
    [[nodiscard]] QString confidenceText() const;
    [[nodiscard]] QString losses() const { return losses_; }

  Q_SIGNALS:
    void stateChanged();
    void stopRequested(); ///< by the user, in any state
    void subtitleChanged();
    void outlookChanged();
    void secondLineChanged();
    void limiterReductionDBChanged();
    void autoGainDBChanged();
    void bassTrackedFrequencyChanged();
    void voiceConfidenceChanged();
    void lossesChanged();
    void comparingChanged();

  private:
    /// Returns the engine's state, or an error if a start was refused, with the displayed text.
    [[nodiscard]] EngineLifecycle::State shownState() const;
    void setRefusal(const QString &reason);
    [[nodiscard]] std::optional<Awaited> awaited() const;
    void followState();
    void announceState();
    void updateLosses();

    AppState &appState_;
    AudioEngine &engine_;
    Clock &clock_;
    std::function<QString()> startCheck_;
    QString refusal_;    ///< of the last start, while it persists
    Timer refusalCheck_; ///< polls the refusal, which has no signal
    QString losses_;
};

} // namespace quorbel
