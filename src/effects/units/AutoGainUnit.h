#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

/// Loudness levelling towards a target, and independently of it a trim of ±12 dB by hand. With both
/// off the sound is untouched. Switching the levelling off drops its gain at once, but keeps the
/// level that it has measured.
class AutoGainUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { target, enabled, manual, manualEnabled };

    AutoGainUnit(const ComponentDescription &description, InstantiationOptions options);
    [[nodiscard]] RenderBlock internalRenderBlock() override;

    /// The leveller's gain, dB; 0 while it is off.
    [[nodiscard]] float readout() const noexcept override;

  protected:
    Status prepare(float sampleRate, std::string &error) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
