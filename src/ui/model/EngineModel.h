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

/// An error's text as the window shows it: unchanged, unless a loaded catalogue has another wording
/// for it.
[[nodiscard]] QString shownError(const std::string &message);

/// The engine as the toolbar, the live panel and the meters show it. [main]
class EngineModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.engine is the only one")
    /// "idle", "running" or "error". Keeps its value while a start is under way.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(bool running READ running NOTIFY stateChanged)
    /// True if it starts again by itself once the hardware allows it; `stop` ends that.
    Q_PROPERTY(bool comingBack READ comingBack NOTIFY stateChanged)
    /// Processing is on, but the output in use is left alone.
    Q_PROPERTY(bool leavingAlone READ leavingAlone NOTIFY stateChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY stateChanged)
    Q_PROPERTY(QString stateWord READ stateWord NOTIFY stateChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY subtitleChanged)
    /// The outlook after an error or while an output is left alone; empty where there is none.
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
    /// The losses since the start; empty for none.
    Q_PROPERTY(QString losses READ losses NOTIFY lossesChanged)
    /// True while a key is held: the unprocessed sound is heard, at matched loudness.
    Q_PROPERTY(bool comparing READ comparing WRITE setComparing NOTIFY comparingChanged)

  public:
    EngineModel(AppState &state, Clock &clock, QObject *parent);

    [[nodiscard]] QString state() const;
    [[nodiscard]] bool running() const;
    [[nodiscard]] bool comingBack() const;
    [[nodiscard]] bool leavingAlone() const;
    /// Running, or it will be without another word of the user.
    [[nodiscard]] bool wanted() const { return running() || comingBack() || leavingAlone(); }
    [[nodiscard]] QString errorMessage() const;
    [[nodiscard]] QString stateWord() const;
    [[nodiscard]] QString subtitle() const;
    [[nodiscard]] QString outlook() const;
    [[nodiscard]] QString secondLine() const;

    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void toggle();

    /// Asked before every start. Returns the reason against it, which is shown like an error of the
    /// engine; empty for none.
    void setStartCheck(std::function<QString()> check) { startCheck_ = std::move(check); }

    /// The reason against the last start, until it has gone; empty for none.
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
    void stopRequested(); ///< by the user, whatever the state
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
    /// The engine's, or an error where a start was refused; with the text that is shown.
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
    QString refusal_;    ///< of the last start, until its reason has gone
    Timer refusalCheck_; ///< polls for that, which is not announced
    QString losses_;
};

} // namespace quorbel
