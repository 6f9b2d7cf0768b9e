#include "effects/units/CrossfeedUnit.h"

#include "effects/PlainCell.h"
#include "effects/cores/CrossfeedCore.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::array crossfeedParameters{
    EffectParameter{"amount", "Crossfeed Amount", 0.0F, 100.0F, ParameterUnit::percent, 0.0F},
};

} // namespace

struct CrossfeedUnit::State {
    CrossfeedCore core;
    PlainCell prevAmountStorage{0.0F}; // percent; not reset by allocation
};

CrossfeedUnit::CrossfeedUnit(const ComponentDescription &description, InstantiationOptions options)
    : EffectUnit(description, options, crossfeedParameters), state_(std::make_shared<State>()) {}

Status CrossfeedUnit::prepare(float sampleRate) {
    state_->core.prepare(sampleRate);
    return statusOK;
}

void CrossfeedUnit::reset() { state_->core.clear(); }

RenderBlock CrossfeedUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, amountStorage = storage(amount)](
                                 const AudioBufferList &buffers, std::uint32_t frames) noexcept {
        const float percent = amountStorage->taken();
        const float target = percent / 100.0F;
        const float previous = state->prevAmountStorage.load() / 100.0F;
        if (target < smallestActiveAmount && previous < smallestActiveAmount) {
            state->prevAmountStorage.store(percent);
            state->core.clear();
            return;
        }
        if (buffers.bufferCount < 2)
            return;
        state->core.process(buffers.data[0], buffers.data[1], frames, previous, target);
        state->prevAmountStorage.store(percent);
    });
}

} // namespace quorbel
