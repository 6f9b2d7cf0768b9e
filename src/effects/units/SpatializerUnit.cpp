#include "effects/units/SpatializerUnit.h"

#include "effects/cores/EnhancerPass.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::array spatializerParameters{
    EffectParameter{"amount", "XTC Amount", 0.0F, 100.0F, ParameterUnit::percent, 50.0F},
    EffectParameter{"notch", "Notch Frequency", 500.0F, 8000.0F, ParameterUnit::hertz, 2000.0F},
};

} // namespace

struct SpatializerUnit::State {
    SpatializerCore core;
};

SpatializerUnit::SpatializerUnit(const ComponentDescription &description,
                                 InstantiationOptions options)
    : EffectUnit(description, options, spatializerParameters), state_(std::make_shared<State>()) {}

Status SpatializerUnit::prepare(float sampleRate) {
    state_->core.prepare(sampleRate);
    return statusOK;
}

void SpatializerUnit::reset() { state_->core.clear(); }

RenderBlock SpatializerUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, amountStorage = storage(amount),
                              notchStorage = storage(notch)](const AudioBufferList &buffers,
                                                             std::uint32_t frames) noexcept {
        if (buffers.bufferCount < 2)
            return;
        const SideDip dip =
            state->core.designed(amountStorage->taken() / 100.0F, notchStorage->taken());
        spatialize(dip, state->core.side(), buffers.data[0], buffers.data[1], frames);
    });
}

void SpatializerUnit::addTo(EnhancerPass &pass) noexcept {
    pass.dip = state_->core.designed(storage(amount)->taken() / 100.0F, storage(notch)->taken());
    pass.side = &state_->core.side();
}

} // namespace quorbel
