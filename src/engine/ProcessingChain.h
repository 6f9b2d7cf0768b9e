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

/// The stages between the source and the main mixer, in their one order, and the settings they were
/// given last. A unit that could not be made is left out; an effect that is off stays in with a
/// neutral value.
///
/// Lives as long as its graph's owner; the graph must be gone, or the nodes detached, before it.
/// [main]
class ProcessingChain {
  public:
    /// The equaliser plays ten bands, however many `bands` are. Registry and clock must outlive the
    /// chain.
    ProcessingChain(const AudioUnitRegistry &registry, Clock &clock, std::vector<EQBand> bands);
    ~ProcessingChain();
    ProcessingChain(const ProcessingChain &) = delete;
    ProcessingChain &operator=(const ProcessingChain &) = delete;

    [[nodiscard]] EQProcessor &eq() { return eq_; }
    [[nodiscard]] ReverbProcessor &reverb() { return reverb_; }

    /// Makes the units that do not exist yet, each with the settings of the moment from its first
    /// breath, and calls `completion` when all of them have been made or have failed: never inside
    /// this call, and not at all if the chain is gone by then.
    void instantiateCustomUnits(std::function<void()> completion);

    /// Null if the unit does not exist.
    [[nodiscard]] const AudioUnit *unit(ChainUnit which) const;

    /// While one of these lives, whatever is set on this chain or its equaliser waits, and is then
    /// heard from one block on. May be nested. Rendering does not wait for its end. [main]
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

    /// Puts the stages that exist between `source`, which must be attached, and the main mixer;
    /// what a run before left connected is undone first.
    void connect(AudioGraph &graph, SourceNode &source);

    /// Whether the loudness before and after the chain and the peaks behind it are measured, from
    /// the next `connect` on.
    void setMeasures(bool measures) { measures_ = measures; }

    /// While bypassed, every effect but the limiter is neutral and the sound has the loudness that
    /// it had processed. The settings are kept and followed, and come back with `false`. Glides.
    void setBypassed(bool bypassed);

    void applySpatial(const SpatialConfig &spatial);
    void applyMixer(const MixerConfig &mixer);

    /// True if sound goes on coming out for a while after it has stopped coming in.
    [[nodiscard]] bool holdsTail() const { return reverb_.mix() > 0.0F; }

    /// How long the sound is on its way through the stages that exist, in seconds.
    [[nodiscard]] double delaySeconds() const;

    [[nodiscard]] MeterReadings readings() const;

    /// The highest levels since `clearHeldLevels`.
    [[nodiscard]] HeldLevels heldLevels() const;
    void clearHeldLevels();

    /// Whether no blocks come until further notice: what the units do beside them may rest.
    void setIdle(bool isIdle);
    /// Whether somebody sees the readings; at first somebody does. When they become seen, they are
    /// up to date as this returns.
    void setDisplayed(bool isDisplayed);

  private:
    struct Instantiation;

    [[nodiscard]] float bypassGainDB() const;
    void pushSpatial();
    void pushMixer();
    void pushDemand();
    void adopt(ChainUnit which, std::unique_ptr<AudioUnit> unit);
    /// Those that exist, in order.
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
    bool measures_ = false;
    bool isBypassed_ = false;
    EffectDemand demand_;
    ShortLock settingsLock_; ///< of the graph that renders the chain
    int openChanges_ = 0;
    std::shared_ptr<ProcessingChain *> self_; ///< what units on their way find the chain by
};

} // namespace quorbel
