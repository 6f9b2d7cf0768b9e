#include "ui/model/EngineModel.h"

#include "ui/logic/NumberFormat.h"

#include <QCoreApplication>

namespace quorbel {

namespace {

/// Engine texts that mention the operating system, with %1 for a number.
constexpr const char *reworded[] = {
    QT_TRANSLATE_NOOP(
        "quorbel::engine",
        "Couldn't start system audio capture (OSStatus %1). If you denied the "
        "permission prompt, enable Quorbel under System Settings → Privacy & Security "
        "→ Screen & System Audio Recording, then try again."),
};

} // namespace

QString shownError(const std::string &message) {
    QString text = QString::fromStdString(message);
    for (const char *pattern : reworded) {
        const QStringList parts = QString::fromUtf8(pattern).split(QStringLiteral("%1"));
        if (!text.startsWith(parts.first()) || !text.endsWith(parts.last()))
            continue;
        const auto length = text.size() - parts.first().size() - parts.last().size();
        if (length >= 0)
            return QCoreApplication::translate("quorbel::engine", pattern)
                .arg(text.mid(parts.first().size(), length));
    }
    return text;
}

EngineModel::EngineModel(AppState &state, Clock &clock, QObject *parent)
    : QObject(parent), appState_(state), engine_(state.engine()), clock_(clock) {
    connect(&engine_, &AudioEngine::stateChanged, this, &EngineModel::followState);
    connect(&engine_, &AudioEngine::mixerChanged, this, &EngineModel::secondLineChanged);
    connect(&engine_, &AudioEngine::outputDeviceChanged, this, &EngineModel::secondLineChanged);
    connect(&engine_, &AudioEngine::limiterReductionDBChanged, this,
            &EngineModel::limiterReductionDBChanged);
    connect(&engine_, &AudioEngine::autoGainDBChanged, this, &EngineModel::autoGainDBChanged);
    connect(&engine_, &AudioEngine::bassTrackedFrequencyChanged, this,
            &EngineModel::bassTrackedFrequencyChanged);
    connect(&engine_, &AudioEngine::lossesChanged, this, &EngineModel::updateLosses);
    connect(&engine_, &AudioEngine::comparingChanged, this, &EngineModel::comparingChanged);
    connect(&appState_.deviceManager(), &DeviceManager::outputDevicesChanged, this,
            &EngineModel::outlookChanged);
    connect(&engine_, &AudioEngine::voiceConfidenceChanged, this,
            &EngineModel::voiceConfidenceChanged);
    followState();
}

QString EngineModel::state() const {
    switch (shownState().kind) {
    case EngineLifecycle::State::Kind::running:
        return QStringLiteral("running");
    case EngineLifecycle::State::Kind::error:
        return QStringLiteral("error");
    case EngineLifecycle::State::Kind::stopped:
        break;
    }
    return QStringLiteral("idle");
}

bool EngineModel::running() const {
    return engine_.state().kind == EngineLifecycle::State::Kind::running;
}

bool EngineModel::comingBack() const { return engine_.isComingBack(); }
bool EngineModel::leavingAlone() const { return engine_.isLeavingAlone(); }

QString EngineModel::errorMessage() const { return QString::fromUtf8(shownState().message); }
QString EngineModel::stateWord() const {
    return QString::fromUtf8(quorbel::stateWord(shownState()));
}
QString EngineModel::subtitle() const {
    return QString::fromUtf8(subtitlu(shownState(), appState_.activePresetDisplayName()));
}

std::optional<Awaited> EngineModel::awaited() const {
    if (!comingBack())
        return std::nullopt;
    const DeviceManager &devices = appState_.deviceManager();
    if (!devices.isHardwareThere())
        return Awaited::soundServer;
    return devices.outputDevices().empty() ? Awaited::outputDevice : Awaited::nextTry;
}

QString EngineModel::outlook() const {
    if (leavingAlone())
        return QString::fromUtf8(leftAloneText);
    return QString::fromUtf8(outlookText(shownState(), awaited()));
}

QString EngineModel::secondLine() const {
    return QString::fromUtf8(
        quorbel::secondLine(engine_.outputDevice().has_value(), engine_.mixer()));
}

void EngineModel::start() {
    // Clears it first, because its signal releases the processing lock that the check may take.
    setRefusal({});
    const QString reason = startCheck_ && !running() ? startCheck_() : QString();
    if (reason.isEmpty())
        engine_.start();
    else
        setRefusal(reason);
}

void EngineModel::stop() {
    Q_EMIT stopRequested();
    setRefusal({});
    engine_.stop();
}

void EngineModel::toggle() {
    if (running() || leavingAlone())
        stop();
    else
        start();
}

bool EngineModel::comparing() const { return engine_.comparing(); }

void EngineModel::setComparing(bool comparing) {
    if (comparing != engine_.comparing())
        engine_.setComparing(comparing);
}

double EngineModel::limiterReductionDB() const {
    return static_cast<double>(engine_.limiterReductionDB()) + 0.0;
}
QString EngineModel::reductionText() const {
    return QString::fromUtf8(fixedText(limiterReductionDB(), 1) + " dB");
}
QString EngineModel::reductionCompactText() const {
    return QString::fromUtf8(fixedText(limiterReductionDB(), 0) + " dB red.");
}
double EngineModel::autoGainDB() const { return static_cast<double>(engine_.autoGainDB()) + 0.0; }
QString EngineModel::autoGainText() const { return QString::fromUtf8(gainText(autoGainDB())); }
double EngineModel::bassTrackedFrequency() const {
    return static_cast<double>(engine_.bassTrackedFrequency());
}
QString EngineModel::trackingText() const {
    return QString::fromUtf8(fixedText(bassTrackedFrequency(), 0) + " Hz");
}
double EngineModel::voiceConfidence() const {
    return static_cast<double>(engine_.voiceConfidence());
}
QString EngineModel::confidenceText() const {
    return QString::fromUtf8(fixedText(100.0 * voiceConfidence(), 0) + "%");
}

EngineLifecycle::State EngineModel::shownState() const {
    if (!refusal_.isEmpty())
        return EngineLifecycle::State::error(refusal_.toStdString());
    EngineLifecycle::State state = engine_.state();
    state.message = shownError(state.message).toStdString();
    return state;
}

void EngineModel::setRefusal(const QString &reason) {
    if (reason == refusal_)
        return;
    refusal_ = reason;
    if (reason.isEmpty())
        refusalCheck_.invalidate();
    else
        refusalCheck_ = Timer::repeating(clock_, 1.0, [this] { setRefusal(startCheck_()); });
    announceState();
}

void EngineModel::announceState() {
    Q_EMIT stateChanged();
    Q_EMIT subtitleChanged();
    Q_EMIT outlookChanged();
}

void EngineModel::followState() {
    if (!running())
        setComparing(false);
    updateLosses();
    announceState();
}

void EngineModel::updateLosses() {
    const QString now = running() ? QString::fromUtf8(lossesText(engine_.losses())) : QString();
    if (now == losses_)
        return;
    losses_ = now;
    Q_EMIT lossesChanged();
}

} // namespace quorbel
