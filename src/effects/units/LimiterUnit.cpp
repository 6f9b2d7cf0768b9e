#include "effects/units/LimiterUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/LookaheadLimiterCore.h"
#include "effects/cores/Memoized.h"

#include <array>
#include <cmath>

namespace quorbel {

namespace {

constexpr std::array limiterParameters{
    EffectParameter{"threshold", "Threshold", -12.0F, 0.0F, ParameterUnit::decibels, -0.3F},
    EffectParameter{"enabled", "Enabled", 0.0F, 1.0F, ParameterUnit::boolean, 1.0F},
};

} // namespace

struct LimiterUnit::State {
    LookaheadLimiterCore core;
    Memoized<float, float> threshold; // linear, by dB
    RelaxedFloat gainReductionStorage{0.0F};
    LimiterActivity activity;
    float sampleRate = 48000.0F;
};

LimiterUnit::LimiterUnit(const ComponentDescription &description, InstantiationOptions options)
    : EffectUnit(description, options, limiterParameters), state_(std::make_shared<State>()) {}

Status LimiterUnit::prepare(float sampleRate) {
    state_->gainReductionStorage.store(0.0F);
    state_->core.prepare(sampleRate);
    state_->sampleRate = sampleRate;
    return statusOK;
}

void LimiterUnit::reset() {
    state_->core.clear();
    state_->gainReductionStorage.store(0.0F); // nothing plays
}

RenderBlock LimiterUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, thresholdStorage = storage(threshold),
                              enabledStorage = storage(enabled)](const AudioBufferList &buffers,
                                                                 std::uint32_t frames) noexcept {
        if (buffers.bufferCount < 2)
            return;
        const float thresholdDB = thresholdStorage->taken();
        if (!isOn(enabledStorage->taken())) {
            state->gainReductionStorage.store(0.0F);
            state->activity.count(frames, 0.0F, state->sampleRate);
            return;
        }
        state->core.process(
            buffers.data[0], buffers.data[1], frames,
            state->threshold.of([](float dB) { return std::pow(10.0F, dB / 20.0F); }, thresholdDB));
        const float reductionDB = state->core.gainReductionDB();
        state->gainReductionStorage.store(reductionDB);
        state->activity.count(frames, reductionDB, state->sampleRate);
    });
}

const LimiterActivity &LimiterUnit::activity() const noexcept { return state_->activity; }

void LimiterUnit::clearLargestReduction() noexcept { state_->activity.clear(); }

float LimiterUnit::readout() const noexcept { return state_->gainReductionStorage.load(); }

} // namespace quorbel
