#pragma once

#include "effects/EQProcessor.h"
#include "effects/EffectUnit.h"
#include "effects/ReverbProcessor.h"
#include "effects/ToneEqualizer.h"
#include "engine/ChainLoudness.h"
#include "engine/ChainUnits.h"
#include "engine/HeldLevels.h"
#include "engine/MeterReadings.h"
#include "engine/OutputPeak.h"
#include "platform/graph/AudioGraph.h"
#include "platform/graph/SourceNode.h"
#include "platform/graph/UnitNode.h"
#include "platform/units/AudioUnitRegistry.h"
#include "settings/records/EQBand.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace quorbel {

/// The stages between the source and the main mixer, in their fixed order, and their current
/// settings. A unit that could not be made is left out; an effect that is off stays in with a
/// neutral value.
///
/// Must outlive its graph, or detach the nodes first. [main]
class ProcessingChain {
  public:
    /// The equaliser plays ten bands, whatever the size of `bands`. Registry and clock must outlive
    /// the chain.
    ProcessingChain(const AudioUnitRegistry &registry, Clock &clock, std::vector<EQBand> bands);
    ~ProcessingChain();
    ProcessingChain(const ProcessingChain &) = delete;
    ProcessingChain &operator=(const ProcessingChain &) = delete;

    [[nodiscard]] EQProcessor &eq() { return eq_; }
    [[nodiscard]] ReverbProcessor &reverb() { return reverb_; }

    /// Makes the missing units; each unit starts with the current settings. Calls `completion` once
    /// all are made or have failed: never during this call or after the chain's end.
    void instantiateCustomUnits(std::function<void()> completion);

    /// Null if the unit does not exist.
    [[nodiscard]] const AudioUnit *unit(ChainUnit which) const;

    /// Holds back new settings of this chain and its equaliser until its end; all then apply from
    /// the same block on. May be nested. Never blocks rendering. [main]
    class [[nodiscard]] SettingsChange {
      public:
        explicit SettingsChange(ProcessingChain &chain) : chain_(chain) {
            if (chain_.openChanges_++ == 0)
                chain_.settingsLock_.lock();
        }
        ~SettingsChange() {
            if (--chain_.openChanges_ == 0)
                chain_.settingsLock_.unlock();
        }
        SettingsChange(const SettingsChange &) = delete;
        SettingsChange &operator=(const SettingsChange &) = delete;

      private:
        ProcessingChain &chain_;
    };

    /// Connects the existing stages between `source`, which must be attached, and the main mixer;
    /// first removes the connections of an earlier run.
    void connect(AudioGraph &graph, SourceNode &source);

    /// Measures the loudness before and after the chain, from the next `connect` on.
    void setMeasuresLoudness(bool measures) { measuresLoudness_ = measures; }
    /// Holds the peaks behind the chain, from the next `connect` on.
    void setHoldsPeaks(bool holds) { holdsPeaks_ = holds; }

    /// While bypassed, every effect but the limiter is neutral, at the loudness of the processed
    /// sound. The settings may change meanwhile and apply again with `false`. Glides.
    void setBypassed(bool bypassed);

    void applySpatial(const SpatialConfig &spatial);
    void applyMixer(const MixerConfig &mixer);

    /// True if the output outlasts the input.
    [[nodiscard]] bool holdsTail() const { return reverb_.mix() > 0.0F; }

    /// Delay of the existing stages, in seconds.
    [[nodiscard]] double delaySeconds() const;

    [[nodiscard]] MeterReadings readings() const;

    /// The highest levels since `clearHeldLevels`.
    [[nodiscard]] HeldLevels heldLevels() const;
    void clearHeldLevels();

    /// `isIdle`: no blocks arrive until further notice; the units may pause their analyses.
    void setIdle(bool isIdle);
    /// Tells whether a window or terminal shows the readings; initially true. Brings them up to
    /// date when it becomes true.
    void setDisplayed(bool isDisplayed);

  private:
    struct Instantiation;

    [[nodiscard]] float bypassGainDB() const;
    void pushSpatial();
    void pushMixer();
    void pushDemand();
    void adopt(ChainUnit which, std::unique_ptr<AudioUnit> unit);
    /// The existing stages, in order.
    [[nodiscard]] std::vector<GraphNode *> stages();
    [[nodiscard]] std::unique_ptr<UnitNode> &node(ChainUnit which) {
        return units_[static_cast<std::size_t>(which)];
    }

    const AudioUnitRegistry &registry_;
    Clock &clock_;
    SpatialConfig spatial_;
    MixerConfig mixer_;

    EQProcessor eq_;
    ToneEqualizer toneEQ_;
    ReverbProcessor reverb_;
    std::array<std::unique_ptr<UnitNode>, chainUnitCount> units_;
    ChainLoudness loudness_;
    OutputPeak outputPeak_;
    bool measuresLoudness_ = false;
    bool holdsPeaks_ = false;
    bool isBypassed_ = false;
    EffectDemand demand_;
    ShortLock settingsLock_; ///< settings lock of the graph that renders the chain
    int openChanges_ = 0;
    std::shared_ptr<ProcessingChain *> self_; ///< lets units that are being made find the chain
};

} // namespace quorbel
