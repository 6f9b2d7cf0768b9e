#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

/// Loudness levelling towards a target, and independent of it a manual trim of ±12 dB. With both
/// off the sound is bit-exact. Switching the levelling off drops its gain at once but keeps the
/// measured level.
class AutoGainUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { target, enabled, manual, manualEnabled };

    AutoGainUnit(const ComponentDescription &description, InstantiationOptions options);
    [[nodiscard]] RenderBlock internalRenderBlock() override;

    /// The leveller's gain, dB; 0 while it is off.
    [[nodiscard]] float readout() const noexcept override;

  protected:
    Status prepare(float sampleRate) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
