#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

class CrossfeedBlock;

/// Loudness levelling towards a target, and an independent manual trim of ±12 dB. Bit-exact with
/// both off. Switching the levelling off drops its gain at once but keeps the measured level.
class AutoGainUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { target, enabled, manual, manualEnabled };

    AutoGainUnit(const ComponentDescription &description, InstantiationOptions options);
    [[nodiscard]] RenderBlock internalRenderBlock() override;

    /// True if the levelling is on in this block. [render]
    [[nodiscard]] bool isLevelling() const noexcept;
    /// Finishes `crossfeed` and renders this unit in one pass; only while levelling. [render]
    void renderBehind(CrossfeedBlock &crossfeed, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept;

    /// The leveller's gain, dB; 0 while it is off.
    [[nodiscard]] float readout() const noexcept override;

  protected:
    Status prepare(float sampleRate) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
