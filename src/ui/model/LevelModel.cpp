#include "ui/model/LevelModel.h"

#include "engine/ChainFormat.h"
#include "settings/records/SettingSchema.h"
#include "ui/logic/Headroom.h"
#include "ui/logic/NumberFormat.h"
#include "ui/model/HistoryModel.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

namespace {

/// Limits beyond the gains of imported presets and the sum of two gains.
constexpr double lowestGainDB = -40.0;
constexpr double highestGainDB = 20.0;

/// Settling times after lowering a level: gain glide and limiter release (time constant 0.05 s);
/// with Auto-Gain, 6.5 of its time constants of 3 s.
constexpr double loweringSeconds = 1.0;
constexpr double levellingSeconds = 20.0;

/// Returns the value lowered by `byDB`, but not below `lowestDB` unless it already was.
float loweredTo(float valueDB, double byDB, double lowestDB) {
    const auto value = static_cast<double>(valueDB);
    return settingValue(std::min(value, std::max(lowestDB, value - byDB)));
}

QString lowerByText(double dB) {
    return LevelModel::tr("Lower by %1 dB").arg(QString::fromStdString(fixedText(dB, 1)));
}

} // namespace

LevelModel::LevelModel(AudioEngine &engine, HistoryModel &history, Clock &clock, QObject *parent)
    : QObject(parent), engine_(engine), history_(history), clock_(clock) {
    EQProcessor &eq = engine_.eq();
    connect(&eq, &EQProcessor::presetGainDBChanged, this, &LevelModel::presetGainChanged);
    connect(&eq, &EQProcessor::presetGainDBChanged, this, &LevelModel::updateHighestPoint);
    connect(&eq, &EQProcessor::globalGainDBChanged, this, &LevelModel::updateHighestPoint);
    connect(&eq, &EQProcessor::bandsChanged, this, &LevelModel::updateHighestPoint);
    connect(&engine_, &AudioEngine::spatialChanged, this, &LevelModel::updateHighestPoint);
    connect(&engine_, &AudioEngine::heldLevelsChanged, this, &LevelModel::heldChanged);
    connect(&engine_, &AudioEngine::mixerChanged, this, &LevelModel::heldChanged);
    updateHighestPoint();
}

double LevelModel::presetGainDB() const { return shownValue(engine_.eq().presetGainDB()); }

void LevelModel::setPresetGainDB(double dB) {
    if (!std::isfinite(dB))
        return;
    const float gain = settingValue(std::clamp(dB, lowestGainDB, highestGainDB));
    if (gain != engine_.eq().presetGainDB())
        history_.edit("Preset gain", [&] { engine_.eq().setPresetGainDB(gain); });
}

QString LevelModel::presetGainText() const {
    return QString::fromStdString(gainText(presetGainDB()));
}

QString LevelModel::highestPointText() const {
    return QString::fromStdString(gainText(highestPointDB_));
}

bool LevelModel::overshoots() const { return highestPointDB_ >= 0.05; }

QString LevelModel::heldPeakText() const {
    return QString::fromStdString(quorbel::heldPeakText(engine_.heldLevels()));
}

QString LevelModel::heldSamplePeakText() const {
    return QString::fromStdString(quorbel::heldSamplePeakText(engine_.heldLevels()));
}

QString LevelModel::limiterTimeText() const {
    return QString::fromStdString(quorbel::limiterTimeText(engine_.heldLevels()));
}

double LevelModel::excessDB() const {
    return lowering_.isSet() ? 0.0 : quorbel::excessDB(engine_.heldLevels(), engine_.mixer());
}

QString LevelModel::lowerText() const { return lowerByText(excessDB()); }

QString LevelModel::lowerToFullScaleText() const {
    return lowerByText(std::max(0.0, highestPointDB_));
}

void LevelModel::lowerToFullScale() {
    if (!overshoots())
        return;
    const float gain = loweredTo(engine_.eq().presetGainDB(), highestPointDB_, lowestGainDB);
    history_.edit("Lower to full scale", [&] { engine_.eq().setPresetGainDB(gain); });
}

void LevelModel::lowerByExcess() {
    const double excess = excessDB();
    if (excess == 0.0)
        return;
    history_.edit(lowerText(), "excess", [&] {
        MixerConfig mixer = engine_.mixer();
        if (!mixer.autoGainEnabled) {
            engine_.eq().setGlobalGainDB(
                loweredTo(engine_.eq().globalGainDB(), excess, lowestGainDB));
            return;
        }
        mixer.autoGainTargetDB = loweredTo(mixer.autoGainTargetDB, excess, -30.0);
        engine_.setMixer(mixer);
    });
    lowering_ = Timer::once(
        clock_, engine_.mixer().autoGainEnabled ? levellingSeconds : loweringSeconds, [this] {
            lowering_.invalidate();
            clearHeld();
        });
    clearHeld();
}

void LevelModel::clearHeld() { engine_.clearHeldLevels(); }

void LevelModel::updateHighestPoint() {
    highestPointDB_ =
        quorbel::highestPointDB(engine_.eq(), engine_.spatial(), chainFormat.sampleRate);
    Q_EMIT highestPointChanged();
}

} // namespace quorbel
