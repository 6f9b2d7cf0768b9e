#include "effects/GainTestUnit.h"

#include "effects/PlainCell.h"
#include "platform/units/UnitStatus.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::array table{
    EffectParameter{"gain", "Gain", -12.0F, 12.0F, ParameterUnit::generic, 2.0F},
    EffectParameter{"enabled", "Enabled", 0.0F, 1.0F, ParameterUnit::boolean, 1.0F},
};

} // namespace

struct GainTestUnit::State {
    PlainCell sampleRate{48000.0F};
    PlainCell frames{0.0F};
};

GainTestUnit::GainTestUnit(const ComponentDescription &description, InstantiationOptions options)
    : EffectUnit(description, options, table), state_(std::make_shared<State>()) {}

Status GainTestUnit::prepare(float sampleRate, std::string &error) {
    if (sampleRate > 384000.0F) {
        error = "the rate is too high";
        return statusFormatNotSupported;
    }
    state_->sampleRate.store(sampleRate);
    state_->frames.store(0.0F);
    return statusOK;
}

RenderBlock GainTestUnit::internalRenderBlock() {
    return effectRenderBlock(
        [gainStorage = storage(gain), enabledStorage = storage(enabled),
         state = state_](const AudioBufferList &buffers, std::uint32_t frames) {
            if (buffers.bufferCount < 2)
                return;
            const float factor = gainStorage->taken();
            const bool on = isOn(enabledStorage->taken());
            state->frames.store(state->frames.load() + static_cast<float>(frames));
            if (!on)
                return;
            for (std::uint32_t channel = 0; channel < 2; ++channel)
                for (std::uint32_t i = 0; i < frames; ++i)
                    buffers.data[channel][i] *= factor;
        });
}

float GainTestUnit::readout() const noexcept { return state_->frames.load(); }
float GainTestUnit::sampleRate() const noexcept { return state_->sampleRate.load(); }

} // namespace quorbel
