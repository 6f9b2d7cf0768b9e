#pragma once

#include "effects/AudioParameter.h"
#include "platform/units/AudioUnit.h"

#include <span>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

/// Row of a unit's parameter table; its index is the parameter's address.
struct EffectParameter {
    const char *identifier;
    const char *name;
    float minimum;
    float maximum;
    ParameterUnit unit;
    float defaultValue;
};

/// Smallest amount (fraction) at which crossfeed and saturation act: exactly 1 % is active.
inline constexpr float smallestActiveAmount = 0.01F;

/// Demand for a unit's background work.
struct EffectDemand {
    bool isIdle = false;     ///< no blocks arrive until further notice
    bool isDisplayed = true; ///< a window or terminal shows the read-outs
};

/// Base of the chain's effect units: one stereo input and output bus, parameters declared by a
/// table, and one cell per parameter between the tree and the render block. The tree's observer and
/// provider hold the cells, not the unit, so a tree or a render block may outlive the unit.
class EffectUnit : public AudioUnit {
  public:
    [[nodiscard]] AudioUnitBusArray &inputBusses() override { return inputBusses_; }
    [[nodiscard]] AudioUnitBusArray &outputBusses() override { return outputBusses_; }

    /// Also calls `prepare` with the output's rate.
    Status allocateRenderResources() override;

    void takeSettings() noexcept override;

    /// Sets the demand for background work. Called again after parameter changes, which may make
    /// that work shape the sound. [main]
    virtual void setDemand(const EffectDemand & /*demand*/) {}

    /// Value published for display, documented by each unit; 0 if the unit publishes none. [any]
    [[nodiscard]] virtual float readout() const noexcept { return 0.0F; }

  protected:
    /// Throws AudioUnitError. `table` is read during construction only.
    EffectUnit(const ComponentDescription &description, InstantiationOptions options,
               std::span<const EffectParameter> table);

    using Cell = std::shared_ptr<AudioParameter>;
    [[nodiscard]] const Cell &storage(ParameterAddress address) const { return cells_[address]; }

    /// Resets the running state for `sampleRate` (Hz) while nothing renders. May fail to allocate.
    /// Units without state keep this version.
    virtual Status prepare(float sampleRate);

  private:
    AudioUnitBus inputBus_;
    AudioUnitBus outputBus_;
    AudioUnitBusArray inputBusses_;
    AudioUnitBusArray outputBusses_;
    std::vector<Cell> cells_;
    std::shared_ptr<std::atomic<std::uint32_t>> touches_; ///< number of writes to the cells
    std::uint32_t takenTouches_ = 0;                      ///< [render]
};

/// Makes an effect unit's render block: pulls bus 0 into the output, then calls `process(output,
/// frames)` in place. Returns an error instead if the input is missing or its pull fails. `process`
/// must be copyable and noexcept, and hold the cells that it needs.
template <typename Process> [[nodiscard]] RenderBlock effectRenderBlock(Process process) {
    return [process = std::move(process)](RenderActionFlags &, const RenderTime &time,
                                          std::uint32_t frames, std::int32_t,
                                          AudioBufferList &output, const RenderEvent *,
                                          const PullInputBlock &pullInput) -> Status {
        if (!pullInput)
            return statusNoConnection;
        RenderActionFlags pullFlags = 0;
        if (const Status status = pullInput(pullFlags, time, frames, 0, output); status != statusOK)
            return status;
        process(output, frames);
        return statusOK;
    };
}

} // namespace quorbel
