#include "ui/model/SpectrumModel.h"

#include "ui/logic/DrawnCurves.h"

#include <vector>

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
    // Draws zeros while inactive: the analyzer keeps its last levels, and a frozen display would
    // look like sound.
    const QList<qreal> levels =
        active_ ? drawnLevels() : QList<qreal>(SpectrumAnalyzer::bandCount, 0.0);
    if (levels == levels_)
        return;
    levels_ = levels;
    Q_EMIT levelsChanged();
}

QList<qreal> SpectrumModel::drawnLevels() const {
    const SpectrumAnalyzer &analyzer = engine_.spectrumAnalyzer();
    std::vector<bool> isMeasured(SpectrumAnalyzer::bandCount);
    for (std::size_t band = 0; band < isMeasured.size(); ++band)
        isMeasured[band] = analyzer.hasBins(band);
    const auto levels =
        filledLevels({analyzer.bands().begin(), analyzer.bands().end()}, isMeasured);
    return {levels.begin(), levels.end()};
}

QList<qreal> SpectrumModel::edges() {
    QList<qreal> edges;
    for (std::size_t band = 0; band <= SpectrumAnalyzer::bandCount; ++band)
        edges << static_cast<double>(SpectrumAnalyzer::bandEdge(band));
    return edges;
}

} // namespace quorbel
