#include "effects/units/BassEnhancerUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/BassEnhancerCore.h"
#include "effects/cores/BassTracker.h"
#include "effects/cores/EnhancerPass.h"
#include "effects/units/MSWidenerUnit.h"
#include "effects/units/SpatializerUnit.h"
#include "effects/units/VoiceEnhancerUnit.h"
#include "platform/threads/SampleRing.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <typeinfo>
#include <utility>

namespace quorbel {

namespace {

constexpr std::array bassEnhancerParameters{
    EffectParameter{"amount", "Bass Amount", 0.0F, 100.0F, ParameterUnit::percent, 50.0F},
    EffectParameter{"drive", "Drive", 1.0F, 8.0F, ParameterUnit::generic, 3.0F},
    EffectParameter{"crossover", "Crossover", 40.0F, 150.0F, ParameterUnit::hertz, 80.0F},
    EffectParameter{"adaptive", "Adaptive Tracking", 0.0F, 1.0F, ParameterUnit::boolean, 0.0F},
};

} // namespace

struct BassEnhancerUnit::State {
    RelaxedFloat sampleRateStorage{48'000.0F};
    /// Hz; written by the analysis, kept by allocation.
    RelaxedFloat detectedFundamentalStorage{80.0F};
    BassEnhancerCore core;
    SampleRing ring{RingAnalysis::ringCapacity}; // kept by allocation

    /// Adds the stage to `pass`; takes the parameters in their own units. [render]
    void addTo(EnhancerPass &pass, float amountPercent, float driveFactor, float setCrossover,
               float adaptiveSwitch) noexcept {
        const float crossoverHz = isAdaptiveOn(adaptiveSwitch)
                                      ? std::clamp(detectedFundamentalStorage.load(), 40.0F, 150.0F)
                                      : setCrossover;
        pass.bass = core.designed(amountPercent / 100.0F, driveFactor, crossoverHz);
        pass.bassSections = &core.sections();
    }
};

struct BassEnhancerUnit::Analysis final : RingAnalysis {
    explicit Analysis(std::shared_ptr<State> shared)
        : RingAnalysis(shared->ring, shared->detectedFundamentalStorage), state(std::move(shared)) {
    }

    float follow(float before, std::uint64_t end) override {
        const auto centre = tracker.estimate(state->ring, end, state->sampleRateStorage.load());
        return centre ? 0.08F * *centre + 0.92F * before : before;
    }

    std::shared_ptr<State> state;
    BassTracker tracker;
};

BassEnhancerUnit::BassEnhancerUnit(const ComponentDescription &description,
                                   InstantiationOptions options,
                                   const SerialQueueFactory &analysisQueues)
    : EffectUnit(description, options, bassEnhancerParameters), state_(std::make_shared<State>()),
      analysisTimer_(analysisQueues, "Quorbel.BassAnalysis") {}

Status BassEnhancerUnit::prepare(float sampleRate) {
    state_->sampleRateStorage.store(sampleRate);
    state_->core.prepare(sampleRate);
    if (!analysis_)
        analysis_ = std::make_shared<Analysis>(state_);
    analysisTimer_.start(analysis_, sampleRate);
    return statusOK;
}

void BassEnhancerUnit::deallocateRenderResources() {
    analysisTimer_.stop();
    EffectUnit::deallocateRenderResources();
}

void BassEnhancerUnit::setDemand(const EffectDemand &demand) {
    const bool isHeard =
        isAdaptiveOn(storage(adaptive)->value()) && storage(amount)->value() > 0.0F;
    analysisTimer_.set(demand.isIdle, demand.isDisplayed || isHeard);
}

void BassEnhancerUnit::reset() { state_->core.clear(); }

RenderBlock BassEnhancerUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, amountStorage = storage(amount),
                              driveStorage = storage(drive), crossoverStorage = storage(crossover),
                              adaptiveStorage = storage(adaptive)](const AudioBufferList &buffers,
                                                                   std::uint32_t frames) noexcept {
        if (buffers.bufferCount < 2)
            return;
        EnhancerPass pass;
        state->addTo(pass, amountStorage->taken(), driveStorage->taken(), crossoverStorage->taken(),
                     adaptiveStorage->taken());
        // The analysis reads the unprocessed sound.
        state->ring.writeMean(buffers.data[0], buffers.data[1], frames);
        enhance(pass, buffers.data[0], buffers.data[1], frames);
    });
}

std::size_t BassEnhancerUnit::joinable(std::span<AudioUnit *const> following) const {
    return following.size() >= 3 && typeid(*following[0]) == typeid(VoiceEnhancerUnit) &&
                   typeid(*following[1]) == typeid(MSWidenerUnit) &&
                   typeid(*following[2]) == typeid(SpatializerUnit)
               ? 3
               : 0;
}

bool BassEnhancerUnit::renderJoined(std::span<AudioUnit *const> joined, AudioBufferList &buffers,
                                    std::uint32_t frames) noexcept {
    if (!buffers.isStereo())
        return false;
    auto &voice = static_cast<VoiceEnhancerUnit &>(*joined[0]);
    auto &widener = static_cast<MSWidenerUnit &>(*joined[1]);
    auto &spatializer = static_cast<SpatializerUnit &>(*joined[2]);
    EnhancerPass pass;
    state_->addTo(pass, storage(amount)->taken(), storage(drive)->taken(),
                  storage(crossover)->taken(), storage(adaptive)->taken());
    voice.addTo(pass);
    widener.addTo(pass, frames);
    spatializer.addTo(pass);
    state_->ring.writeMean(buffers.data[0], buffers.data[1], frames);
    enhance(pass, buffers.data[0], buffers.data[1], frames);
    voice.feedAnalysis(frames);
    return true;
}

float BassEnhancerUnit::readout() const noexcept {
    return state_->detectedFundamentalStorage.load();
}

} // namespace quorbel
