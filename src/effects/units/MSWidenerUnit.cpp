#include "effects/units/MSWidenerUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/EnhancerPass.h"
#include "effects/cores/MidSide.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::array widenerParameters{
    EffectParameter{"width", "Width", 0.0F, 200.0F, ParameterUnit::percent, 100.0F},
};

} // namespace

struct MSWidenerUnit::State {
    RelaxedFloat prevWidthStorage{100.0F}; // percent; not reset by allocation

    /// Returns the width's ramp from the last block's width to `percent`. [render]
    LinearRamp rampTo(float percent, std::uint32_t frames) noexcept {
        const float previous = prevWidthStorage.load();
        prevWidthStorage.store(percent);
        return {previous / 100.0F, percent / 100.0F, frames};
    }
};

MSWidenerUnit::MSWidenerUnit(const ComponentDescription &description, InstantiationOptions options)
    : EffectUnit(description, options, widenerParameters), state_(std::make_shared<State>()) {}

RenderBlock MSWidenerUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, widthStorage = storage(width)](
                                 const AudioBufferList &buffers, std::uint32_t frames) noexcept {
        if (buffers.bufferCount < 2)
            return;
        widen(buffers.data[0], buffers.data[1], frames,
              state->rampTo(widthStorage->taken(), frames));
    });
}

void MSWidenerUnit::addTo(EnhancerPass &pass, std::uint32_t frames) noexcept {
    pass.width = state_->rampTo(storage(width)->taken(), frames);
}

} // namespace quorbel
