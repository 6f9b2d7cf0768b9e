#include "effects/units/AutoGainUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/AutoGainCore.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorbel {

namespace {

constexpr std::array autoGainParameters{
    EffectParameter{"target", "Target Level", -30.0F, -6.0F, ParameterUnit::decibels, -16.0F},
    EffectParameter{"enabled", "Enabled", 0.0F, 1.0F, ParameterUnit::boolean, 0.0F},
    EffectParameter{"manual", "Manual Loudness", -12.0F, 12.0F, ParameterUnit::decibels, 0.0F},
    EffectParameter{"manualEnabled", "Manual Loudness Enabled", 0.0F, 1.0F, ParameterUnit::boolean,
                    0.0F},
};

// Linear gain; exactly 1 at 0 dB, so that the unit can pass the sound through.
float manualGain(float enabledSwitch, float manualDB) {
    if (!isOn(enabledSwitch))
        return 1.0F;
    const float clamped = std::clamp(manualDB, -12.0F, 12.0F);
    return clamped == 0.0F ? 1.0F : std::pow(10.0F, clamped / 20.0F);
}

} // namespace

struct AutoGainUnit::State {
    AutoGainCore core;
    Memoized<float, float, float> manualGain; // linear, by switch and dB
    RelaxedFloat gainStorage{0.0F};           // dB; carries the gain from block to block

    void level(float *left, float *right, std::uint32_t frames, float targetDB, float trimTarget,
               CrossfeedBlock *crossfeed) noexcept {
        gainStorage.store(
            core.level(left, right, frames, gainStorage.load(), targetDB, trimTarget, crossfeed));
    }
};

AutoGainUnit::AutoGainUnit(const ComponentDescription &description, InstantiationOptions options)
    : EffectUnit(description, options, autoGainParameters), state_(std::make_shared<State>()) {}

Status AutoGainUnit::prepare(float sampleRate) {
    state_->gainStorage.store(0.0F);
    state_->core.prepare(sampleRate,
                         manualGain(storage(manualEnabled)->value(), storage(manual)->value()));
    return statusOK;
}

RenderBlock AutoGainUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, targetStorage = storage(target),
                              enabledStorage = storage(enabled), manualStorage = storage(manual),
                              manualEnabledStorage = storage(manualEnabled)](
                                 const AudioBufferList &buffers, std::uint32_t frames) noexcept {
        const bool levelling = isOn(enabledStorage->taken());
        const float trimTarget =
            state->manualGain.of(manualGain, manualEnabledStorage->taken(), manualStorage->taken());
        const float targetDB = targetStorage->taken();

        if (!levelling && !state->core.isTrimActive(trimTarget)) {
            state->gainStorage.store(0.0F);
            return;
        }
        if (buffers.bufferCount < 2)
            return;
        float *const left = buffers.data[0];
        float *const right = buffers.data[1];
        if (!levelling) {
            state->gainStorage.store(0.0F);
            state->core.trim(left, right, frames, trimTarget);
            return;
        }
        state->level(left, right, frames, targetDB, trimTarget, nullptr);
    });
}

bool AutoGainUnit::isLevelling() const noexcept { return isOn(storage(enabled)->taken()); }

void AutoGainUnit::renderBehind(CrossfeedBlock &crossfeed, AudioBufferList &buffers,
                                std::uint32_t frames) noexcept {
    const float trimTarget = state_->manualGain.of(manualGain, storage(manualEnabled)->taken(),
                                                   storage(manual)->taken());
    state_->level(buffers.data[0], buffers.data[1], frames, storage(target)->taken(), trimTarget,
                  &crossfeed);
}

float AutoGainUnit::readout() const noexcept { return state_->gainStorage.load(); }

} // namespace quorbel
