#include "effects/units/SaturationUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/Saturation.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::array saturationParameters{
    EffectParameter{"drive", "Saturation Drive", 0.0F, 100.0F, ParameterUnit::percent, 0.0F},
};

} // namespace

struct SaturationUnit::State {
    RelaxedFloat prevDriveStorage{0.0F}; // percent; not reset by allocation
};

SaturationUnit::SaturationUnit(const ComponentDescription &description,
                               InstantiationOptions options)
    : EffectUnit(description, options, saturationParameters), state_(std::make_shared<State>()) {}

RenderBlock SaturationUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, driveStorage = storage(drive)](
                                 const AudioBufferList &buffers, std::uint32_t frames) noexcept {
        const float percent = driveStorage->taken();
        const float target = percent / 100.0F;
        const float previous = state->prevDriveStorage.load() / 100.0F;
        if (target < smallestActiveAmount && previous < smallestActiveAmount) {
            state->prevDriveStorage.store(percent);
            return;
        }
        if (buffers.bufferCount < 2)
            return;
        saturate(buffers.data[0], buffers.data[1], frames, LinearRamp(previous, target, frames));
        state->prevDriveStorage.store(percent);
    });
}

} // namespace quorbel
