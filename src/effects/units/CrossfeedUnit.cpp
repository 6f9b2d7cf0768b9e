#include "effects/units/CrossfeedUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/CrossfeedBlock.h"
#include "effects/units/AutoGainUnit.h"

#include <array>
#include <typeinfo>

namespace quorbel {

namespace {

constexpr std::array crossfeedParameters{
    EffectParameter{"amount", "Crossfeed Amount", 0.0F, 100.0F, ParameterUnit::percent, 0.0F},
};

} // namespace

struct CrossfeedUnit::State {
    CrossfeedCore core;
    RelaxedFloat prevAmountStorage{0.0F}; // percent; not reset by allocation

    [[nodiscard]] bool isResting(float percent) const noexcept {
        return percent / 100.0F < smallestActiveAmount &&
               prevAmountStorage.load() / 100.0F < smallestActiveAmount;
    }
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
        if (state->isResting(percent)) {
            state->prevAmountStorage.store(percent);
            state->core.clear();
            return;
        }
        if (buffers.bufferCount < 2)
            return;
        state->core.process(buffers.data[0], buffers.data[1], frames,
                            state->prevAmountStorage.load() / 100.0F, percent / 100.0F);
        state->prevAmountStorage.store(percent);
    });
}

std::size_t CrossfeedUnit::joinable(std::span<AudioUnit *const> following) const {
    return !following.empty() && typeid(*following[0]) == typeid(AutoGainUnit) ? 1 : 0;
}

bool CrossfeedUnit::renderJoined(std::span<AudioUnit *const> joined, AudioBufferList &buffers,
                                 std::uint32_t frames) noexcept {
    auto &autoGain = static_cast<AutoGainUnit &>(*joined[0]);
    const float percent = storage(amount)->taken();
    if (!buffers.isStereo() || state_->isResting(percent) || !autoGain.isLevelling())
        return false;
    CrossfeedBlock block(state_->core, buffers.data[0], buffers.data[1], frames,
                         state_->prevAmountStorage.load() / 100.0F, percent / 100.0F);
    autoGain.renderBehind(block, buffers, frames);
    state_->prevAmountStorage.store(percent);
    return true;
}

} // namespace quorbel
