#include "effects/units/SpatializerUnit.h"

#include "effects/cores/SpatializerCore.h"

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

Status SpatializerUnit::prepare(float sampleRate, std::string &) {
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
        const float amountPercent = amountStorage->taken();
        const float notchHz = notchStorage->taken();
        state->core.process(buffers.data[0], buffers.data[1], frames, amountPercent / 100.0F,
                            notchHz);
    });
}

} // namespace quorbel
