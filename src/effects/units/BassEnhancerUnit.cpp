#include "effects/units/BassEnhancerUnit.h"

#include "effects/PlainCell.h"
#include "effects/cores/AnalysisRing.h"
#include "effects/cores/BassEnhancerCore.h"
#include "effects/cores/BassTracker.h"

#include <algorithm>
#include <array>
#include <cstdint>
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
    PlainCell sampleRateStorage{48'000.0F};
    PlainCell detectedFundamentalStorage{80.0F}; // Hz; written by the analysis, kept by allocation
    BassEnhancerCore core;
    AnalysisRing ring; // kept by allocation
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

Status BassEnhancerUnit::prepare(float sampleRate, std::string &) {
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
        const float amountPercent = amountStorage->taken();
        const float driveFactor = driveStorage->taken();
        const float setCrossover = crossoverStorage->taken();
        const float crossoverHz =
            isAdaptiveOn(adaptiveStorage->taken())
                ? std::clamp(state->detectedFundamentalStorage.load(), 40.0F, 150.0F)
                : setCrossover;

        // The analysis hears the unprocessed sound.
        state->ring.feed(buffers.data[0], buffers.data[1], frames);
        state->core.process(buffers.data[0], buffers.data[1], frames, amountPercent / 100.0F,
                            driveFactor, crossoverHz);
    });
}

float BassEnhancerUnit::readout() const noexcept {
    return state_->detectedFundamentalStorage.load();
}

} // namespace quorbel
