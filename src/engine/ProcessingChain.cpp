#include "engine/ProcessingChain.h"

#include "effects/units/LimiterUnit.h"
#include "engine/ChainFormat.h"
#include "engine/UnitSettings.h"
#include "platform/graph/MixerNode.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {

/// One call of `instantiateCustomUnits`: counts down, then completes.
struct ProcessingChain::Instantiation {
    std::weak_ptr<ProcessingChain *> chain;
    std::size_t outstanding = 0;
    std::function<void()> completion;
};

ProcessingChain::ProcessingChain(const AudioUnitRegistry &registry, Clock &clock,
                                 std::vector<EQBand> bands)
    : registry_(registry), clock_(clock), eq_(EQBand::defaultBands()),
      self_(std::make_shared<ProcessingChain *>(this)) {
    eq_.setBands(std::move(bands));
}

ProcessingChain::~ProcessingChain() = default;

void ProcessingChain::instantiateCustomUnits(std::function<void()> completion) {
    std::vector<std::size_t> missing;
    for (std::size_t index = 0; index < chainUnitCount; ++index)
        if (units_[index] == nullptr)
            missing.push_back(index);
    auto instantiation = std::make_shared<Instantiation>(
        Instantiation{self_, missing.size(), std::move(completion)});
    if (missing.empty())
        clock_.post([instantiation] {
            if (!instantiation->chain.expired())
                instantiation->completion();
        });
    for (const std::size_t index : missing)
        registry_.instantiate(chainUnitDescriptions[index], 0,
                              [instantiation, index](std::unique_ptr<AudioUnit> unit, Status) {
                                  const auto chain = instantiation->chain.lock();
                                  if (chain == nullptr)
                                      return;
                                  (*chain)->adopt(static_cast<ChainUnit>(index), std::move(unit));
                                  if (--instantiation->outstanding == 0)
                                      instantiation->completion();
                              });
}

void ProcessingChain::adopt(ChainUnit which, std::unique_ptr<AudioUnit> unit) {
    // Two starts in a row may both have requested the unit.
    if (unit == nullptr || node(which) != nullptr)
        return;
    pushSettings(spatial_, which, *unit);
    pushSettings(mixer_, which, *unit);
    if (auto *effect = dynamic_cast<EffectUnit *>(unit.get()))
        effect->setDemand(demand_);
    node(which) = std::make_unique<UnitNode>(std::move(unit));
}

const AudioUnit *ProcessingChain::unit(ChainUnit which) const {
    const auto &found = units_[static_cast<std::size_t>(which)];
    return found ? &found->unit() : nullptr;
}

std::vector<GraphNode *> ProcessingChain::stages() {
    std::vector<GraphNode *> result{&eq_.eq(), &toneEQ_.node()};
    if (measuresLoudness_)
        result.insert(result.begin(), &loudness_.before());
    for (std::size_t index = 0; index < chainUnitCount; ++index) {
        if (units_[index] != nullptr)
            result.push_back(units_[index].get());
        if (static_cast<ChainUnit>(index) == ChainUnit::spatializer)
            result.push_back(&reverb_.reverb());
    }
    if (measuresLoudness_)
        result.push_back(&loudness_.after());
    if (holdsPeaks_)
        result.push_back(&outputPeak_);
    return result;
}

void ProcessingChain::connect(AudioGraph &graph, SourceNode &source) {
    graph.setSettingsLock(settingsLock_);
    const std::vector<GraphNode *> present = stages();
    for (GraphNode *stage : present)
        if (!graph.isAttached(*stage))
            graph.attach(*stage);

    graph.disconnectInput(graph.mainMixer());
    for (GraphNode *stage : present)
        graph.disconnectOutput(*stage);

    GraphNode *previous = &source;
    for (GraphNode *stage : present) {
        graph.connect(*previous, *stage, chainFormat);
        previous = stage;
    }
    graph.connect(*previous, graph.mainMixer(), chainFormat);
}

void ProcessingChain::setBypassed(bool bypassed) {
    if (bypassed == isBypassed_)
        return;
    isBypassed_ = bypassed;
    const SettingsChange change(*this);
    if (bypassed)
        eq_.setBypassed(bypassGainDB());
    else
        eq_.endBypass();
    pushSpatial();
    pushMixer();
}

float ProcessingChain::bypassGainDB() const {
    // In silence the loudness is unknown: falls back to the equaliser's gain, but never boosts.
    const float gain = loudness_.matchingGainDB().value_or(std::min(0.0F, eq_.totalGainDB()));
    return mixer_.limiterEnabled ? gain : std::min(0.0F, gain);
}

void ProcessingChain::applySpatial(const SpatialConfig &spatial) {
    spatial_ = spatial;
    pushSpatial();
}

void ProcessingChain::pushSpatial() {
    SpatialConfig spatial = spatial_;
    if (isBypassed_) {
        spatial.widenerEnabled = spatial.xtcEnabled = spatial.reverbEnabled = false;
        spatial.bassEnabled = spatial.voiceEnabled = false;
        spatial.toneBassDB = spatial.toneMidDB = spatial.toneTrebleDB = 0.0F;
    }
    const SettingsChange change(*this);
    toneEQ_.setGainsDB({spatial.toneBassDB, spatial.toneMidDB, spatial.toneTrebleDB});
    for (std::size_t index = 0; index < chainUnitCount; ++index)
        if (units_[index] != nullptr)
            pushSettings(spatial, static_cast<ChainUnit>(index), units_[index]->unit());
    pushDemand(); // within the change: updates analyses before they shape the sound
    reverb_.setPreset(spatial.reverbPreset);
    reverb_.setMix(spatial.reverbEnabled ? spatial.reverbMix : 0.0F);
}

void ProcessingChain::applyMixer(const MixerConfig &mixer) {
    mixer_ = mixer;
    pushMixer();
}

void ProcessingChain::pushMixer() {
    MixerConfig mixer = mixer_;
    if (isBypassed_) {
        mixer.saturationEnabled = mixer.crossfeedEnabled = false;
        mixer.autoGainEnabled = mixer.manualLoudnessEnabled = false;
    }
    const SettingsChange change(*this);
    for (std::size_t index = 0; index < chainUnitCount; ++index)
        if (units_[index] != nullptr)
            pushSettings(mixer, static_cast<ChainUnit>(index), units_[index]->unit());
}

void ProcessingChain::setIdle(bool isIdle) {
    demand_.isIdle = isIdle;
    pushDemand();
}

void ProcessingChain::setDisplayed(bool isDisplayed) {
    demand_.isDisplayed = isDisplayed;
    pushDemand();
}

void ProcessingChain::pushDemand() {
    for (const auto &unit : units_)
        if (unit != nullptr)
            if (auto *effect = dynamic_cast<EffectUnit *>(&unit->unit()))
                effect->setDemand(demand_);
}

double ProcessingChain::delaySeconds() const {
    double seconds = 0.0;
    for (const auto &node : units_)
        if (node != nullptr)
            seconds += node->unit().latency();
    return seconds;
}

MeterReadings ProcessingChain::readings() const {
    MeterReadings readings;
    const auto read = [this](ChainUnit which, float &into) {
        if (const auto *effect = dynamic_cast<const EffectUnit *>(unit(which)))
            into = effect->readout();
    };
    read(ChainUnit::limiter, readings.limiterReductionDB);
    read(ChainUnit::autoGain, readings.autoGainDB);
    read(ChainUnit::bassEnhancer, readings.bassTrackedFrequency);
    read(ChainUnit::voiceEnhancer, readings.voiceConfidence);
    return readings;
}

HeldLevels ProcessingChain::heldLevels() const {
    const auto tenths = [](float dB) { return std::round(dB * 10.0F) / 10.0F + 0.0F; };
    const auto peakDB = [&](float peak) {
        return tenths(std::max(HeldLevels::silenceDB, 20.0F * std::log10(peak)));
    };
    HeldLevels levels{.samplePeakDB = peakDB(outputPeak_.sample()),
                      .truePeakDB = peakDB(outputPeak_.between())};
    if (const auto *limiter = dynamic_cast<const LimiterUnit *>(unit(ChainUnit::limiter))) {
        levels.largestReductionDB = tenths(limiter->activity().largestDB());
        levels.limiterSeconds = std::round(limiter->activity().secondsInLastMinute());
    }
    return levels;
}

void ProcessingChain::clearHeldLevels() {
    outputPeak_.clear();
    if (const auto &found = node(ChainUnit::limiter); found != nullptr)
        if (auto *limiter = dynamic_cast<LimiterUnit *>(&found->unit()))
            limiter->clearLargestReduction();
}

} // namespace quorbel
