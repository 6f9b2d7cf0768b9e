#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

struct EnhancerPass;

/// Stereo width from mono (0 %) over neutral (100 %) to twice the side signal (200 %), the same at
/// all frequencies. A change ramps over one block.
class MSWidenerUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { width };

    MSWidenerUnit(const ComponentDescription &description, InstantiationOptions options);
    [[nodiscard]] RenderBlock internalRenderBlock() override;

    /// Adds the unit's stage to a joint pass. [render]
    void addTo(EnhancerPass &pass, std::uint32_t frames) noexcept;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
