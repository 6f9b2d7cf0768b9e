#pragma once

#include "effects/EffectUnit.h"
#include "effects/units/LimiterActivity.h"

namespace quorbel {

/// Safety stage at the end of the chain: keeps every sample within the threshold. Switching it off
/// removes its delay at once; switching it on first plays the 1.3 ms left in its delay line.
class LimiterUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { threshold, enabled };

    LimiterUnit(const ComponentDescription &description, InstantiationOptions options);

    void reset() override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;
    [[nodiscard]] double latency() const override { return 0.0013; }

    /// Gain reduction of the last block, dB, never negative.
    [[nodiscard]] float readout() const noexcept override;

    /// Time and size of the reduction; none while switched off.
    [[nodiscard]] const LimiterActivity &activity() const noexcept;
    void clearLargestReduction() noexcept;

  protected:
    Status prepare(float sampleRate) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
