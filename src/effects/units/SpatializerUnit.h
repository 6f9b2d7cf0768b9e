#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

struct EnhancerPass;

/// Crosstalk stage: widens the soundstage of speakers. Also runs at amount 0, where it changes only
/// rounding. Changes apply from the next block.
class SpatializerUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { amount, notch };

    SpatializerUnit(const ComponentDescription &description, InstantiationOptions options);
    void reset() override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;

    /// Adds the unit's stage to a joint pass. [render]
    void addTo(EnhancerPass &pass) noexcept;

  protected:
    Status prepare(float sampleRate) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
