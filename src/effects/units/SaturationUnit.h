#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

/// Analog warmth: a tanh shaper blended with the dry sound. A change of drive ramps over one block.
class SaturationUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { drive };

    SaturationUnit(const ComponentDescription &description, InstantiationOptions options);
    [[nodiscard]] RenderBlock internalRenderBlock() override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
