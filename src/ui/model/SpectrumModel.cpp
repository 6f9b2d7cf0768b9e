#include "ui/model/SpectrumModel.h"

#include <algorithm>

namespace quorbel {

SpectrumModel::SpectrumModel(AudioEngine &engine, QObject *parent)
    : QObject(parent), engine_(engine), levels_(SpectrumAnalyzer::bandCount, 0.0) {
    connect(&engine_, &AudioEngine::stateChanged, this, &SpectrumModel::followEngine);
    connect(&engine_, &AudioEngine::mixerChanged, this, &SpectrumModel::followEngine);
    connect(&engine_.spectrumAnalyzer(), &SpectrumAnalyzer::bandsChanged, this,
            &SpectrumModel::followLevels);
    followEngine();
}

void SpectrumModel::setVisible(bool visible) {
    if (visible == visible_)
        return;
    visible_ = visible;
    engine_.setDisplayed(visible);
    Q_EMIT visibleChanged();
    followLevels();
}

void SpectrumModel::followEngine() {
    const bool active = engine_.state().kind == EngineLifecycle::State::Kind::running &&
                        engine_.mixer().spectrumEnabled;
    if (active == active_)
        return;
    active_ = active;
    Q_EMIT activeChanged();
    followLevels();
}

void SpectrumModel::followLevels() {
    if (!visible_)
        return;
    // The analyzer keeps its last levels when it is taken off; a display that stands still would
    // look like sound.
    QList<qreal> levels(SpectrumAnalyzer::bandCount, 0.0);
    if (active_)
        std::ranges::copy(engine_.spectrumAnalyzer().bands(), levels.begin());
    if (levels == levels_)
        return;
    levels_ = levels;
    Q_EMIT levelsChanged();
}

} // namespace quorbel
